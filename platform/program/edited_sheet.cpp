#include "platform/program/edited_sheet.h"

#include <algorithm>

#include "platform/program/column_widths.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

constexpr std::size_t kMaxCellLength = 32767;  // 16-bit units
constexpr double kDaysTo1904 = 1462;
constexpr double kPhantomDay = 60;  // 29 February 1900, which spreadsheets count and the calendar doesn't

std::size_t units(std::string_view utf8) {
  return utf8.size() <= kMaxCellLength ? utf8.size() : text::from_utf8(utf8).size();
}

[[noreturn]] void refuse(const std::string& what, std::size_t is, std::size_t limit, const std::string& advice) {
  throw WorkbookError("the report has " + std::to_string(is) + " or more " + what +
                      ", and a sheet of this workbook takes " + std::to_string(limit) + "; " + advice);
}

constexpr const char* kLarger = "use an .xlsx workbook, which takes 1048576 rows of 16384 cells, or the report itself";

}  // namespace

void require_fitting(const Sheet& sheet, SheetLimits limits) {
  if (sheet.rows() > limits.rows) refuse("rows", sheet.rows(), limits.rows, kLarger);
  for (std::size_t row = 0; row < sheet.rows(); ++row) {
    const auto cells = sheet.row(row);
    const std::string place = " in row " + std::to_string(row + 1);
    if (cells.size() > limits.columns) refuse("cells" + place, cells.size(), limits.columns, kLarger);
    for (const Cell& cell : cells) {
      if (cell.kind() != CellKind::kText) continue;
      if (const std::size_t length = units(cell.text()); length > kMaxCellLength) {
        refuse("characters in a cell" + place, length, kMaxCellLength, "use the report itself");
      }
    }
  }
}

void count_dates_from_1904(Sheet& sheet, Locale& locale) {
  for (Cell& cell : sheet.cells) {
    if (cell.kind() != CellKind::kDate) continue;
    const double day = cell.number();
    if (day >= kDaysTo1904) {
      cell = Cell::date(day - kDaysTo1904, cell.style);
    } else {
      const Date date = day < kPhantomDay ? day + 1 : day;
      cell = Cell::text(sheet.texts.emplace_back(text::to_utf8(locale.GeneralDate(date))), cell.style);
    }
  }
}

// One change of styles, worked out once for each style that it meets.
class EditedSheet::Change {
 public:
  Change(Sheet& sheet, const std::function<void(CellStyle&)>& change) : sheet_(sheet), change_(change) {}

  void apply(std::uint16_t& number) {
    if (number >= changed_.size()) changed_.resize(number + 1U);
    auto& changed = changed_[number];
    if (!changed) {
      CellStyle style = sheet_.styles[number];
      change_(style);
      changed = sheet_.style_number(style);
    }
    number = *changed;
  }

 private:
  Sheet& sheet_;
  const std::function<void(CellStyle&)>& change_;
  std::vector<std::optional<std::uint16_t>> changed_;
};

EditedSheet::EditedSheet(Sheet sheet, SheetLimits limits)
    : sheet_(std::move(sheet)), limits_(limits), column_styles_(limits.columns) {}

void EditedSheet::restyle(const std::vector<Area>& areas, const std::function<void(CellStyle&)>& change) {
  Change applied(sheet_, change);
  for (const Area& area : areas) {
    if (area.last_column >= limits_.columns || (!area.is_columns() && area.last_row >= limits_.rows)) {
      throw WorkbookError("the sheet has no such cells");
    }
    area.is_columns() ? restyle_columns(area, applied) : restyle_cells(area, applied);
  }
}

void EditedSheet::restyle_columns(const Area& area, Change& change) {
  for (std::size_t column = area.first_column; column <= area.last_column; ++column)
    change.apply(column_styles_[column]);
  for (std::size_t row = 0; row < sheet_.rows(); ++row) {
    const auto cells = sheet_.row(row);
    for (std::size_t column = area.first_column; column < std::min<std::size_t>(cells.size(), area.last_column + 1U);
         ++column) {
      change.apply(cells[column].style);
    }
  }
}

void EditedSheet::restyle_cells(const Area& area, Change& change) {
  for (std::uint32_t row = area.first_row; row <= area.last_row; ++row) {
    for (std::uint32_t column = area.first_column; column <= area.last_column; ++column) {
      change.apply(cell_at(row, column).style);
    }
  }
}

// Makes the cell if it isn't there.
Cell& EditedSheet::cell_at(std::uint32_t row, std::uint32_t column) {
  if (row >= sheet_.rows()) sheet_.row_ends.resize(row + 1U, sheet_.cells.size());
  const std::size_t length = sheet_.row(row).size();
  if (column >= length) {
    const std::size_t missing = column + 1U - length;
    const auto end = sheet_.cells.begin() + static_cast<std::ptrdiff_t>(sheet_.row_ends[row]);
    auto made = sheet_.cells.insert(end, missing, Cell());
    for (std::size_t at = length; at <= column; ++at) (made++)->style = column_styles_[at];
    for (std::size_t later = row; later < sheet_.rows(); ++later) sheet_.row_ends[later] += missing;
  }
  return sheet_.row(row)[column];
}

std::optional<std::string_view> EditedSheet::text_at(std::uint32_t row, std::uint32_t column) const {
  if (row >= sheet_.rows() || column >= sheet_.row(row).size()) return std::nullopt;
  const Cell& cell = sheet_.row(row)[column];
  if (cell.kind() != CellKind::kText) return std::nullopt;
  return cell.text();
}

// A style that one change made and the next one replaced has no place in the workbook.
void EditedSheet::drop_unused_styles() {
  std::vector<std::optional<std::uint16_t>> numbers(sheet_.styles.size());
  std::vector<CellStyle> used;
  const auto keep = [&](std::uint16_t& style) {
    auto& number = numbers[style];
    if (!number) {
      number = static_cast<std::uint16_t>(used.size());
      used.push_back(std::move(sheet_.styles[style]));
    }
    style = *number;
  };
  std::uint16_t plain = 0;
  keep(plain);
  for (Cell& cell : sheet_.cells) keep(cell.style);
  for (std::uint16_t& style : column_styles_) keep(style);
  sheet_.styles = std::move(used);
}

Sheet EditedSheet::finish(std::string name) {
  sheet_.name = std::move(name);
  drop_unused_styles();
  const std::vector<double> widths = column_widths(sheet_);
  for (std::uint32_t column = 0; column < limits_.columns; ++column) {
    const std::uint16_t style = column_styles_[column];
    const double width = column < widths.size() ? widths[column] : 0;
    auto& runs = sheet_.columns;
    if (!runs.empty() && runs.back().style == style && runs.back().width == width) {
      runs.back().last = column;
    } else {
      runs.push_back({column, column, style, width});
    }
  }
  return std::move(sheet_);
}

}  // namespace trvtrout::platform
