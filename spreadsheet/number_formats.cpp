#include "spreadsheet/number_formats.h"

#include <algorithm>
#include <iterator>

namespace trvtrout::spreadsheet {
namespace {

struct Row {
  std::string_view format;
  std::uint16_t number;
};

// Under US settings.
constexpr Row kReserved[] = {
    {"General", 0},
    {"0", 1},
    {"0.00", 2},
    {"#,##0", 3},
    {"#,##0.00", 4},
    {"\"$\"#,##0_);[Red]\\(\"$\"#,##0\\)", 6},
    {"\"$\"#,##0.00_);[Red]\\(\"$\"#,##0.00\\)", 8},
    {"0%", 9},
    {"0.00%", 10},
    {"0.00E+00", 11},
    {"m/d/yyyy", 14},
    {"d-mmm-yy", 15},
    {"d-mmm", 16},
    {"mmm-yy", 17},
    {"h:mm AM/PM", 18},
    {"h:mm:ss AM/PM", 19},
    {"h:mm", 20},
    {"h:mm:ss", 21},
    {"m/d/yyyy h:mm", 22},
};

}  // namespace

std::optional<std::uint16_t> reserved_number_format(std::string_view format) {
  const auto* row = std::ranges::find(kReserved, format, &Row::format);
  if (row == std::end(kReserved)) return std::nullopt;
  return row->number;
}

}  // namespace trvtrout::spreadsheet
