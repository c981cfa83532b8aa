#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "spreadsheet/sheet.h"

namespace trvtrout::tests {

using namespace spreadsheet;

// Cells of every kind, styles of every kind, a filter, texts that fill several records of the table.
inline Sheet sheet_of_all_kinds(const std::string& name) {
  Sheet sheet;
  sheet.name = name;
  sheet.has_filter = true;
  const auto left = sheet.style_number({.left = true});
  const auto own = sheet.style_number({.number_format = "m/d/yy h:mm AM/PM"});
  const auto whole = sheet.style_number({.number_format = "0", .left = true});
  const auto green = sheet.style_number({.bold = true, .color_index = 10});
  const auto brown = sheet.style_number({.color_index = 53});
  const auto date = sheet.style_number({.number_format = "m/d/yyyy"});
  sheet.columns = {{0, 0, left, 20.5}, {1, 2, whole, 0}, {4, 16383, brown, 3}};
  const auto text = [&sheet](std::string value, std::uint16_t style) {
    sheet.cells.push_back(Cell::text(sheet.texts.emplace_back(std::move(value)), style));
  };
  const auto blank = [&sheet](std::uint16_t style) { sheet.cells.emplace_back().style = style; };
  const auto end_row = [&sheet] { sheet.row_ends.push_back(sheet.cells.size()); };
  text("Ταρβελ", green);
  text("", left);
  text("latin \xC3\xA9 \xC3\xBF", brown);
  text("\xF0\x9F\x98\x80 pair", 0);
  end_row();
  for (const double value : {1.5, 7.0, -3.0, -0.0, 536870911.0, 536870912.0, -536870911.0, 1e300})
    sheet.cells.push_back(Cell::number(value, whole));
  sheet.cells.push_back(Cell::date(38139.5910300926, own));
  sheet.cells.push_back(Cell::date(1, date));
  sheet.cells.push_back(Cell::boolean(true, green));
  sheet.cells.push_back(Cell::boolean(false, 0));
  end_row();
  end_row();
  blank(left);
  blank(0);
  blank(green);
  blank(0);
  end_row();
  for (std::size_t row = 0; row < 400; ++row) {
    std::string value = std::to_string(row % 200) + " " + std::string(row * 37 % 300, 'x');
    if (row % 3 == 0) value += "\xCE\xA9\xCE\xA8";
    text(std::move(value), left);
    text(std::to_string(row), whole);
    end_row();
  }
  text(std::string(20000, 'n'), 0);
  std::string wide;
  for (int unit = 0; unit < 9001; ++unit) wide += "\xCE\xA9";
  text(std::move(wide), 0);
  end_row();
  return sheet;
}

// What a reader has to find in the sheet.
inline nlohmann::json described(const Sheet& sheet) {
  constexpr const char* kKinds[] = {"blank", "number", "date", "text", "boolean"};
  nlohmann::json styles = nlohmann::json::array(), columns = styles, rows = styles;
  for (const CellStyle& style : sheet.styles)
    styles.push_back(
        {{"format", style.number_format}, {"left", style.left}, {"bold", style.bold}, {"color", style.color_index}});
  std::vector<std::uint16_t> column_styles(16384);
  for (const ColumnFormat& column : sheet.columns) {
    columns.push_back(
        {{"first", column.first}, {"last", column.last}, {"style", column.style}, {"width", column.width}});
    std::fill(column_styles.begin() + column.first, column_styles.begin() + column.last + 1, column.style);
  }
  for (std::size_t row = 0; row < sheet.rows(); ++row) {
    auto& cells = rows.emplace_back(nlohmann::json::array());
    for (const Cell& cell : sheet.row(row)) {
      const bool is_text = cell.kind() == CellKind::kText;
      const bool is_skipped = cell.kind() == CellKind::kBlank && cell.style == column_styles[cells.size()];
      cells.push_back({is_skipped ? "skipped" : kKinds[static_cast<int>(cell.kind())],
                       is_text ? nlohmann::json(cell.text()) : nlohmann::json(cell.number()), cell.style});
    }
  }
  return {{"name", sheet.name}, {"filter", sheet.has_filter}, {"styles", styles}, {"columns", columns}, {"rows", rows}};
}

}  // namespace trvtrout::tests
