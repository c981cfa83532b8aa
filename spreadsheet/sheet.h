#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::spreadsheet {

enum class CellKind : std::uint8_t { kBlank, kNumber, kDate, kText, kBoolean };

// The value of one cell and the number of its style in the sheet. 16 bytes, trivially copied; a text (UTF-8, no line
// of it interpreted, never a formula) stands in the storage of the sheet.
class Cell {
 public:
  Cell() = default;
  static Cell number(double value, std::uint16_t style) { return Cell(CellKind::kNumber, value, style); }
  // Days since 30 December 1899 in the counting of spreadsheets, where 29 February 1900 is day 60; a value below 1 is
  // a time of day and a kNumber.
  static Cell date(double value, std::uint16_t style) { return Cell(CellKind::kDate, value, style); }
  static Cell boolean(bool value, std::uint16_t style) { return Cell(CellKind::kBoolean, value ? 1 : 0, style); }
  // `text` must outlive the cell.
  static Cell text(std::string_view text, std::uint16_t style) {
    Cell cell(CellKind::kText, 0, style);
    cell.length_ = static_cast<std::uint32_t>(text.size());
    cell.text_ = text.data();
    return cell;
  }

  CellKind kind() const { return kind_; }
  // Of kNumber and kDate; 1 or 0 of kBoolean.
  double number() const { return number_; }
  // Of kText.
  std::string_view text() const { return {text_, length_}; }

  std::uint16_t style = 0;

 private:
  Cell(CellKind kind, double value, std::uint16_t style_number) : style(style_number), kind_(kind), number_(value) {}

  CellKind kind_ = CellKind::kBlank;
  std::uint32_t length_ = 0;
  union {
    double number_ = 0;
    const char* text_;
  };
};

// How large a sheet may be.
struct SheetLimits {
  std::uint32_t rows, columns;
};

// How a cell is shown.
struct CellStyle {
  std::string number_format = "General";  // UTF-8, as US settings spell it
  bool left = false;                      // aligned to the left; else as the value's kind wants it
  bool bold = false;
  std::uint8_t color_index = 0;  // of the font: 1 to 56 in the workbook's palette; 0 for the automatic colour

  bool operator==(const CellStyle&) const = default;
};

// Neighbouring columns, counted from 0, that are formatted alike.
struct ColumnFormat {
  std::uint32_t first, last;
  std::uint16_t style;  // of cells that aren't there, below the last row too
  double width;         // in digits of the normal font; 0 for the default width
};

// The width of a column as both workbook formats hold it: with the margins of its cells, in 256ths of a digit. 0 gives
// the default width.
std::uint16_t stored_width(double digits);

// A sheet that is to be added to a workbook. Its cells hold views into its texts, so it can be moved and not copied.
struct Sheet {
  Sheet() = default;
  Sheet(Sheet&&) = default;
  Sheet& operator=(Sheet&&) = default;
  Sheet(const Sheet&) = delete;
  Sheet& operator=(const Sheet&) = delete;

  std::string name;                   // UTF-8; a legal name that no other sheet of the workbook has
  std::vector<CellStyle> styles{1};   // the first is the plain style
  std::vector<ColumnFormat> columns;  // from left to right, none twice; `last` may lie at the format's last column
  std::vector<Cell> cells;            // row by row, each row from column A on
  std::vector<std::size_t> row_ends;  // of each row the index in `cells` behind its last cell
  bool has_filter = false;            // a filter with its drop-down over column A, from row 1 to the last row
  std::deque<std::string> texts;      // what the cells point into

  std::size_t rows() const { return row_ends.size(); }
  std::span<const Cell> row(std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : row_ends[index - 1];
    return std::span(cells).subspan(begin, row_ends[index] - begin);
  }
  std::span<Cell> row(std::size_t index) {
    const std::size_t begin = index == 0 ? 0 : row_ends[index - 1];
    return std::span(cells).subspan(begin, row_ends[index] - begin);
  }
  // The number of `style`, added if it isn't there.
  std::uint16_t style_number(const CellStyle& style);
};

}  // namespace trvtrout::spreadsheet
