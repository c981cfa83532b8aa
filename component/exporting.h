#pragma once

#include <functional>
#include <optional>

#include "component/boolean.h"
#include "vtrfile/lists.h"
#include "workbook/report_move.h"

namespace trvtrout {

// Recounts a list of a document, whatever object of the class holds it. May raise.
using Recount = std::function<vtrfile::ListInfo(vtrfile::ListId list)>;

// The work of XL_Output_Compared. An empty Recount stands for a document that wasn't given, which is a failure where
// labels are to be coloured. Returns nothing, or the failure.
std::optional<Failure> export_comparison(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                         const Recount& primary, const Recount& secondary, Boolean color);

}  // namespace trvtrout
