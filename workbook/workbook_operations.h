#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "workbook/part_sheet.h"
#include "workbook/report_move.h"

namespace trvtrout {

// Moves a detail report into a sheet: XL_Output_Statistics. `own`: what the sheet's name asks for, null if nothing.
std::optional<Failure> output_statistics(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                         const PartSheet* own);

// How many rows the items of a comparison take at the most. May raise.
using CountRows = std::function<std::int64_t()>;

// Moves a comparison into a sheet: XL_Output_Compared. The labels are coloured when there are `item_rows`, which are
// asked for only when there is an `own`.
std::optional<Failure> output_compared(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                       const PartSheet* own, const CountRows& item_rows);

}  // namespace trvtrout
