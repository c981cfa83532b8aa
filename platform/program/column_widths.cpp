#include "platform/program/column_widths.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

constexpr std::size_t kDefaultWidth = 8;
constexpr std::size_t kMaxWidth = 60;      // wider ones push the others off the screen
constexpr std::size_t kMargin = 2;         // of the cell, and of a bold font
constexpr std::size_t kGeneralWidth = 11;  // the number of characters that the general format rounds to

// East Asian characters, from U+3000 on, are two digits wide.
std::size_t width_of_text(std::string_view utf8) {
  std::size_t width = 0;
  for (const char unit : utf8.substr(0, 4 * kMaxWidth)) {
    const auto byte = static_cast<unsigned char>(unit);
    if ((byte & 0xC0U) != 0x80) width += byte >= 0xE3 ? 2 : 1;
  }
  return width;
}

std::size_t width_of_number(double number, const CellStyle& style) {
  char digits[400];
  if (style.number_format == "General") {
    return std::min(static_cast<std::size_t>(std::to_chars(digits, std::end(digits), number).ptr - digits),
                    kGeneralWidth);
  }
  const std::size_t whole = static_cast<std::size_t>(std::log10(std::max(std::abs(number), 1.0))) + 2;
  // A date format is about as long as what it shows; others add signs to the number.
  return style.number_format == "0" ? whole : std::max(whole, style.number_format.size());
}

std::size_t width_of(const Cell& cell, const CellStyle& style) {
  switch (cell.kind()) {
    case CellKind::kBlank:
      return 0;
    case CellKind::kNumber:
    case CellKind::kDate:
      return width_of_number(cell.number(), style);
    case CellKind::kText:
      return width_of_text(cell.text());
    case CellKind::kBoolean:
      return 5;
  }
  return 0;
}

}  // namespace

std::vector<double> column_widths(const Sheet& sheet) {
  std::vector<std::size_t> widest;
  for (std::size_t row = 0; row < sheet.rows(); ++row) {
    const auto cells = sheet.row(row);
    widest.resize(std::max(widest.size(), cells.size()));
    bool runs_over = true;  // a text with nothing to its right is shown over the empty cells
    for (std::size_t column = cells.size(); column-- > 0;) {
      const Cell& cell = cells[column];
      if (cell.kind() == CellKind::kBlank) continue;
      if (!runs_over || cell.kind() != CellKind::kText) {
        widest[column] = std::max(widest[column], width_of(cell, sheet.styles[cell.style]));
      }
      runs_over = false;
    }
  }
  std::vector<double> widths;
  widths.reserve(widest.size());
  for (const std::size_t width : widest) {
    widths.push_back(width <= kDefaultWidth ? 0 : static_cast<double>(std::min(width + kMargin, kMaxWidth)));
  }
  return widths;
}

}  // namespace trvtrout::platform
