#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "workbook/report_move.h"

namespace trvtrout {

// Moves a detail report into a sheet: XL_Output_Statistics.
std::optional<Failure> output_statistics(automation::Spreadsheet& spreadsheet, const ReportMove& move);

// A list of a document whose size tells how far a comparison's rows reach.
enum class SizedList {
  kIncludeFiles,
  kModules,
  kTree,
  kTables,
  kFields,
  kLookups,
  kControlTags,
  kLanguages,
  kDataSend,
};

// The size of a list of the primary or the `secondary` document; 0 for a list that doesn't hold together. May raise.
using ListSize = std::function<std::int64_t(SizedList list, bool secondary)>;

// Moves a comparison into a sheet: XL_Output_Compared. The labels are coloured when there is a `list_size`; it is
// asked for nothing unless the sheet's name is that of a comparison.
std::optional<Failure> output_compared(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                       const ListSize& list_size);

}  // namespace trvtrout
