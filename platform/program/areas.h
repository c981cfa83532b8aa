#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace trvtrout::platform {

inline constexpr std::uint32_t kWholeColumn = 0xFFFFFFFF;  // as the last row of an area

// A rectangle of cells; rows and columns counted from 0, the last ones included.
struct Area {
  std::uint32_t first_row, last_row, first_column, last_column;

  bool is_columns() const { return first_row == 0 && last_row == kWholeColumn; }
};

// Of "B2", "A12,A14", "B:F", "A:A" or "N" (a column). Raises WorkbookError for a text that is no list of addresses.
std::vector<Area> parse_addresses(std::u16string_view addresses);

}  // namespace trvtrout::platform
