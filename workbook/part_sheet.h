#pragma once

#include <cstdint>
#include <string_view>

namespace trvtrout {

// The sheet of one part in a workbook: its name, the formats that it has of its own, empty for none, and where a
// comparison's items stand.
struct PartSheet {
  std::u16string_view name;
  // Of a detail report: a column of whole digits, a cell that holds a moment.
  std::u16string_view report_digits, report_moment;
  // Of a comparison.
  std::u16string_view compared_digits, compared_moments[2];
  std::int64_t first_item_row;    // counted from 1
  std::int64_t rows_between = 0;  // rows from the first item to the last one that are none
};

}  // namespace trvtrout
