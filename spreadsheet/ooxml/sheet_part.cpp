#include "spreadsheet/ooxml/sheet_part.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

#include "spreadsheet/opc/xml_text.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::size_t kPieceSize = 65536;

template <class Number>
void append_number(std::string& out, Number number) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  out.append(digits.data(), end);
}

// A to XFD for a column counted from 0.
std::string letters_of(std::size_t column) {
  std::string letters;
  for (std::size_t left = column + 1; left != 0; left = (left - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (left - 1) % 26));
  return letters;
}

// Readers drop blanks at either end, and may turn line ends into blanks, unless told not to.
bool must_preserve(std::string_view text) {
  const auto is_blank = [](char character) { return character == ' ' || character == '\t' || character == '\n'; };
  return !text.empty() &&
         (is_blank(text.front()) || is_blank(text.back()) || text.find('\n') != std::string_view::npos);
}

class SheetWriter {
 public:
  SheetWriter(const Sheet& sheet, std::vector<std::uint32_t> formats, SheetFrame frame)
      : sheet_(sheet), formats_(std::move(formats)), frame_(std::move(frame)) {
    std::size_t begin = 0, widest = 1;
    for (const std::size_t end : sheet.row_ends) widest = std::max(widest, end - std::exchange(begin, end));
    for (std::size_t column = 0; column < widest; ++column) letters_.push_back(letters_of(column));
    column_styles_.resize(widest);
    for (const ColumnFormat& format : sheet.columns) {
      for (std::size_t column = format.first; column <= format.last && column < widest; ++column)
        column_styles_[column] = format.style;
    }
  }

  // The next piece, empty at the end. The pieces come again from the start behind the end.
  std::string_view next() {
    piece_.clear();
    if (stage_ == Stage::kHead) {
      append_head();
      stage_ = Stage::kRows;
    }
    while (stage_ == Stage::kRows && piece_.size() < kPieceSize) {
      if (row_ < sheet_.rows()) {
        append_row(row_++);
      } else {
        append_tail();
        stage_ = Stage::kEnd;
      }
    }
    if (piece_.empty()) {
      stage_ = Stage::kHead;
      row_ = 0;
    }
    return piece_;
  }

 private:
  enum class Stage : std::uint8_t { kHead, kRows, kEnd };

  void append_head();
  void append_columns();
  void append_row(std::size_t row);
  void append_cell(const Cell& cell, std::size_t column);
  void append_tail();
  void append_format(std::string_view attribute, std::uint16_t style);

  const Sheet& sheet_;
  std::vector<std::uint32_t> formats_;
  SheetFrame frame_;
  std::vector<std::string> letters_;
  std::vector<std::uint16_t> column_styles_;
  std::string row_number_;
  std::string piece_;
  Stage stage_ = Stage::kHead;
  std::size_t row_ = 0;
};

void SheetWriter::append_head() {
  piece_.append(frame_.head).append("<dimension ref=\"A1");
  if (letters_.size() > 1 || sheet_.rows() > 1)
    piece_.append(":").append(letters_.back()).append(std::to_string(std::max<std::size_t>(sheet_.rows(), 1)));
  piece_.append("\"/>").append(frame_.views).append("<sheetFormatPr defaultRowHeight=\"15\"/>");
  if (!sheet_.columns.empty()) append_columns();
  piece_ += "<sheetData>";
}

void SheetWriter::append_columns() {
  piece_ += "<cols>";
  for (const ColumnFormat& format : sheet_.columns) {
    piece_ += "<col min=\"" + std::to_string(format.first + 1) + "\" max=\"" + std::to_string(format.last + 1) + '"';
    piece_ += " width=\"";
    // A column that has a format can't be without a width.
    append_number(piece_, stored_width(format.width) / 256.0);
    piece_ += format.width > 0 ? "\" customWidth=\"1\"" : "\"";
    append_format(" style=\"", format.style);
    piece_ += "/>";
  }
  piece_ += "</cols>";
}

void SheetWriter::append_format(std::string_view attribute, std::uint16_t style) {
  if (formats_[style] == 0) return;
  piece_ += attribute;
  append_number(piece_, formats_[style]);
  piece_ += '"';
}

void SheetWriter::append_row(std::size_t row) {
  const std::size_t begin = piece_.size();
  row_number_ = std::to_string(row + 1);
  piece_.append("<row r=\"").append(row_number_).append("\">");
  const std::size_t cells = piece_.size();
  std::size_t column = 0;
  for (const Cell& cell : sheet_.row(row)) append_cell(cell, column++);
  if (piece_.size() == cells) {
    piece_.resize(begin);
  } else {
    piece_ += "</row>";
  }
}

void SheetWriter::append_cell(const Cell& cell, std::size_t column) {
  if (cell.kind() == CellKind::kBlank && cell.style == column_styles_[column]) return;
  piece_.append("<c r=\"").append(letters_[column]).append(row_number_).append("\"");
  append_format(" s=\"", cell.style);
  switch (cell.kind()) {
    case CellKind::kBlank:
      piece_ += "/>";
      return;
    case CellKind::kText:
      piece_ +=
          must_preserve(cell.text()) ? " t=\"inlineStr\"><is><t xml:space=\"preserve\">" : " t=\"inlineStr\"><is><t>";
      append_xml_text(piece_, cell.text());
      piece_ += "</t></is></c>";
      return;
    case CellKind::kBoolean:
      piece_ += cell.number() != 0 ? " t=\"b\"><v>1</v></c>" : " t=\"b\"><v>0</v></c>";
      return;
    case CellKind::kNumber:
    case CellKind::kDate:
      break;
  }
  if (std::isfinite(cell.number())) {
    piece_ += "><v>";
    append_number(piece_, cell.number());
    piece_ += "</v></c>";
  } else {
    piece_ += " t=\"e\"><v>#NUM!</v></c>";
  }
}

void SheetWriter::append_tail() {
  piece_ += "</sheetData>";
  if (sheet_.has_filter && sheet_.rows() != 0)
    piece_ += "<autoFilter ref=\"A1:A" + std::to_string(sheet_.rows()) + "\"/>";
  piece_ += frame_.tail;
}

// The size is counted in a first run: without it the zip file would have to be written in a form for files above 4 GB,
// which some readers refuse.
class SheetStream : public PartStream {
 public:
  explicit SheetStream(SheetWriter writer) : writer_(std::move(writer)) {
    for (std::string_view piece; !(piece = writer_.next()).empty();) size_ += piece.size();
  }
  std::uint64_t size() const override { return size_; }
  std::string_view next() override { return writer_.next(); }

 private:
  SheetWriter writer_;
  std::uint64_t size_ = 0;
};

}  // namespace

SheetFrame new_frame(std::string_view space, std::size_t views) {
  std::string shown = "<sheetViews>";
  for (std::size_t view = 0; view < std::max<std::size_t>(views, 1); ++view) {
    shown += "<sheetView tabSelected=\"1\" workbookViewId=\"" + std::to_string(view) +
             "\"><selection activeCell=\"A1\" sqref=\"A1\"/></sheetView>";
  }
  return {.head = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<worksheet xmlns=\"" +
                  std::string(space) + "\">",
          .views = shown + "</sheetViews>",
          .tail = "</worksheet>"};
}

std::unique_ptr<PartStream> sheet_stream(const Sheet& sheet, std::vector<std::uint32_t> formats, SheetFrame frame) {
  return std::make_unique<SheetStream>(SheetWriter(sheet, std::move(formats), std::move(frame)));
}

}  // namespace trvtrout::spreadsheet::ooxml
