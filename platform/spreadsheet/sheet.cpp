#include "platform/spreadsheet/sheet.h"

#include <algorithm>

namespace trvtrout::spreadsheet {

std::uint16_t Sheet::style_number(const CellStyle& style) {
  const auto found = std::ranges::find(styles, style);
  const auto number = static_cast<std::uint16_t>(found - styles.begin());
  if (found == styles.end()) styles.push_back(style);
  return number;
}

}  // namespace trvtrout::spreadsheet
