#include "spreadsheet/text/comma_text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "spreadsheet/text/cell_value.h"

namespace trvtrout::spreadsheet {
namespace {

bool ends_line(char character) { return character == '\r' || character == '\n'; }
bool ends_cell(char character) { return character == ',' || ends_line(character); }

// Goes through the text once. The cells are views into it: a quoted cell is unquoted where it stands, as it never
// grows by that.
class CommaTextReader {
 public:
  // `text` stands in the texts of `sheet`.
  CommaTextReader(Sheet& sheet, std::string& text, int present_year, SheetLimits limits)
      : sheet_(sheet),
        at_(text.data()),
        end_(text.data() + text.size()),
        present_year_(present_year),
        limits_(limits) {}

  void read() {
    while (at_ != end_ && sheet_.rows() <= limits_.rows) {
      if (!ends_line(*at_)) take_cells();
      // CR LF, LF or CR.
      take('\r');
      take('\n');
      sheet_.row_ends.push_back(sheet_.cells.size());
    }
  }

 private:
  void take_cells() {
    const std::size_t first = sheet_.cells.size();
    do {
      sheet_.cells.push_back(cell(take_cell()));
      if (sheet_.cells.size() - first > limits_.columns) at_ = end_;
    } while (take(','));
  }

  bool take(char wanted) {
    if (at_ == end_ || *at_ != wanted) return false;
    ++at_;
    return true;
  }

  std::string_view take_cell() {
    if (take('"')) return take_quoted();
    const char* const begin = at_;
    at_ = std::find_if(at_, end_, ends_cell);
    return {begin, at_};
  }

  // Behind the opening quote. What follows the closing one up to the cell's end belongs to the cell.
  std::string_view take_quoted() {
    const char* const begin = at_;
    char* kept = at_;
    const auto keep_until = [&](char* stop) {
      const auto length = static_cast<std::size_t>(stop - at_);
      std::char_traits<char>::move(kept, at_, length);
      kept += length;
      at_ = stop;
    };
    keep_until(std::find(at_, end_, '"'));
    while (take('"') && at_ != end_ && *at_ == '"') {
      *kept++ = *at_++;
      keep_until(std::find(at_, end_, '"'));
    }
    keep_until(std::find_if(at_, end_, ends_cell));
    return {begin, kept};
  }

  Cell cell(std::string_view text) {
    const CellValue value = recognized(text, present_year_);
    switch (value.kind) {
      case CellKind::kBlank:
        return {};
      case CellKind::kNumber:
        return Cell::number(value.number, style(value.format));
      case CellKind::kDate:
        return Cell::date(value.number, style(value.format));
      case CellKind::kBoolean:
        return Cell::boolean(value.number != 0, style(value.format));
      case CellKind::kText:
        break;
    }
    return Cell::text(text, style(ValueFormat::kGeneral));
  }

  std::uint16_t style(ValueFormat format) {
    if (format == ValueFormat::kGeneral) return 0;
    std::uint16_t& known = styles_[static_cast<std::size_t>(format)];
    if (known == 0) known = sheet_.style_number({.number_format = std::string(spelling(format))});
    return known;
  }

  Sheet& sheet_;
  char* at_;
  char* end_;
  int present_year_;
  SheetLimits limits_;
  std::array<std::uint16_t, kValueFormats> styles_{};  // of each format the sheet's style; 0 until it's needed
};

}  // namespace

Sheet read_comma_text(std::string text, int present_year, SheetLimits limits) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("a comma-separated text of 4 GiB or more doesn't fit into a sheet; split it");
  }
  Sheet sheet;
  std::string& kept = sheet.texts.emplace_back(std::move(text));
  CommaTextReader(sheet, kept, present_year, limits).read();
  return sheet;
}

}  // namespace trvtrout::spreadsheet
