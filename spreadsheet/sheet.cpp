#include "spreadsheet/sheet.h"

#include <algorithm>

namespace trvtrout::spreadsheet {

std::uint16_t stored_width(double digits) {
  // Pixels of the normal font: a digit has seven, the margins together five. A column has at most 255 digits.
  constexpr double kDefaultDigits = 8.43, kMostDigits = 255;
  const double width = digits > 0 ? std::min(digits, kMostDigits) : kDefaultDigits;
  return static_cast<std::uint16_t>((width * 7 + 5) / 7 * 256);
}

std::uint16_t Sheet::style_number(const CellStyle& style) {
  const auto found = std::ranges::find(styles, style);
  const auto number = static_cast<std::uint16_t>(found - styles.begin());
  if (found == styles.end()) styles.push_back(style);
  return number;
}

}  // namespace trvtrout::spreadsheet
