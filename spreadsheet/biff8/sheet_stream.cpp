#include "spreadsheet/biff8/sheet_stream.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace trvtrout::spreadsheet::biff8 {
namespace {

constexpr std::size_t kRowsInBlock = 32;

ByteWriter& record(ByteWriter& out, std::uint16_t type, std::size_t length) {
  return out.u16(type).u16(static_cast<std::uint16_t>(length));
}

class SheetWriter {
 public:
  SheetWriter(const Sheet& sheet, const SheetSetting& setting, SharedStrings& strings)
      : sheet_(sheet), setting_(setting), strings_(strings) {
    for (const ColumnFormat& format : sheet.columns)
      for (std::uint32_t column = format.first; column <= last_column(format); ++column)
        column_styles_[column] = format.style;
    std::size_t begin = 0;
    for (const std::size_t end : sheet.row_ends) {
      widest_row_ = std::max(widest_row_, end - begin);
      begin = end;
    }
    if (sheet.rows() > kRows || widest_row_ > kColumns)
      throw WorkbookError("a sheet of an .xls file has at most 65,536 rows of 256 cells");
  }

  std::string write() {
    out_.raw(setting_.frame.head);
    for (const ColumnFormat& format : sheet_.columns) column(format);
    if (sheet_.has_filter) record(kAutoFilterInfo, 2).u16(1);
    record(kDimensions, 14).u32(0).u32(static_cast<std::uint32_t>(sheet_.rows()));
    out_.u16(0).u16(static_cast<std::uint16_t>(widest_row_)).u16(0);
    for (std::size_t row = 0; row < sheet_.rows(); row += kRowsInBlock)
      block(row, std::min(row + kRowsInBlock, sheet_.rows()));
    out_.raw(setting_.drawing).raw(setting_.frame.tail);
    return out_.take();
  }

 private:
  ByteWriter& record(std::uint16_t type, std::size_t length) { return biff8::record(out_, type, length); }

  static std::uint32_t last_column(const ColumnFormat& format) { return std::min(format.last, kColumns - 1); }

  void column(const ColumnFormat& format) {
    constexpr std::uint16_t kHasOwnWidth = 0x0002;
    record(kColInfo, 12).u16(static_cast<std::uint16_t>(format.first));
    out_.u16(static_cast<std::uint16_t>(last_column(format)));
    out_.u16(stored_width(format.width)).u16(setting_.xfs.at(format.style));
    out_.u16(format.width > 0 ? kHasOwnWidth : 0).u16(0);
  }

  // A cell that shows no more than its column would show without it isn't written.
  bool is_written(const Cell& cell, std::size_t column) const {
    return cell.kind() != CellKind::kBlank || cell.style != column_styles_[column];
  }

  void block(std::size_t begin, std::size_t end) {
    for (std::size_t row = begin; row < end; ++row) row_head(row);
    for (std::size_t row = begin; row < end; ++row) {
      const auto cells = sheet_.row(row);
      for (std::size_t column = 0; column < cells.size(); ++column)
        if (is_written(cells[column], column))
          cell(cells[column], static_cast<std::uint16_t>(row), static_cast<std::uint16_t>(column));
    }
  }

  void row_head(std::size_t row) {
    constexpr std::uint16_t kAlwaysSet = 0x0100;
    constexpr std::uint16_t kUsualXf = 15;
    const auto cells = sheet_.row(row);
    std::size_t first = 0, end = cells.size();
    while (first < end && !is_written(cells[first], first)) ++first;
    while (end > first && !is_written(cells[end - 1], end - 1)) --end;
    if (first == end) return;
    record(kRow, 16).u16(static_cast<std::uint16_t>(row)).u16(static_cast<std::uint16_t>(first));
    out_.u16(static_cast<std::uint16_t>(end)).u16(setting_.row_height).u32(0).u16(kAlwaysSet).u16(kUsualXf);
  }

  ByteWriter& cell_head(std::uint16_t type, std::size_t length, const Cell& cell, std::uint16_t row,
                        std::uint16_t column) {
    return record(type, 6 + length).u16(row).u16(column).u16(setting_.xfs.at(cell.style));
  }

  void cell(const Cell& cell, std::uint16_t row, std::uint16_t column) {
    switch (cell.kind()) {
      case CellKind::kBlank:
        cell_head(kBlank, 0, cell, row, column);
        break;
      case CellKind::kNumber:
      case CellKind::kDate:
        number(cell, row, column);
        break;
      case CellKind::kText:
        cell_head(kLabelSst, 4, cell, row, column).u32(strings_.number(cell.text()));
        break;
      case CellKind::kBoolean:
        cell_head(kBoolErr, 2, cell, row, column).u8(cell.number() != 0).u8(0);
        break;
    }
  }

  // Whole numbers of up to 30 bits have a shorter record.
  void number(const Cell& cell, std::uint16_t row, std::uint16_t column) {
    constexpr double kLimit = 1 << 29;
    constexpr std::uint32_t kIsWhole = 2;
    const double value = cell.number();
    const bool is_short =
        std::abs(value) < kLimit && value == std::trunc(value) && !(value == 0 && std::signbit(value));
    if (is_short)
      cell_head(kRk, 4, cell, row, column)
          .u32((static_cast<std::uint32_t>(static_cast<std::int32_t>(value)) << 2) | kIsWhole);
    else
      cell_head(kNumber, 8, cell, row, column).f64(value);
  }

  const Sheet& sheet_;
  const SheetSetting& setting_;
  SharedStrings& strings_;
  std::array<std::uint16_t, kColumns> column_styles_{};
  std::size_t widest_row_ = 0;
  ByteWriter out_;
};

void append_page(ByteWriter& out) {
  constexpr std::uint16_t kNoPrinter = 0x0004, kUnscaled = 255;
  constexpr double kMargin = 0.5;
  record(out, kHeader, 0);
  record(out, kFooter, 0);
  record(out, kHorizontalCenter, 2).u16(0);
  record(out, kVerticalCenter, 2).u16(0);
  record(out, kSetup, 34).u16(0).u16(kUnscaled).u16(1).u16(1).u16(1).u16(kNoPrinter).u32(0);
  out.f64(kMargin).f64(kMargin).u16(1);
}

void append_window(ByteWriter& out) {
  // Grid, headings, zeros, headings' usual colour, outline symbols, selected, active.
  constexpr std::uint16_t kShown = 0x0002 | 0x0004 | 0x0010 | 0x0020 | 0x0080 | 0x0200 | 0x0400;
  constexpr std::uint32_t kUsualColor = 0x40;
  constexpr std::uint8_t kOnlyPane = 3;
  record(out, kWindow2, 18).u16(kShown).u32(0).u32(kUsualColor).zeros(8);
  record(out, kSelection, 15).u8(kOnlyPane).u32(0).u16(0).u16(1).zeros(6);
}

}  // namespace

SheetFrame new_frame(const SheetSurroundings& around) {
  std::string bof(around.bof);
  put(bof, 2, kSheetSubstream);
  ByteWriter head, tail;
  record(head, kBof, bof.size()).raw(bof).raw(around.settings);
  record(head, kPrintHeaders, 2).u16(0);
  record(head, kPrintGridLines, 2).u16(0);
  record(head, kGridSet, 2).u16(1);
  record(head, kGuts, 8).zeros(8);
  record(head, kDefaultRowHeight, 4).u16(0).u16(around.row_height);
  record(head, kWsBool, 2).u16(0x04C1);
  append_page(head);
  record(head, kDefColWidth, 2).u16(8);
  for (std::size_t window = 0; window < around.windows; ++window) append_window(tail);
  record(tail, kEof, 0);
  return {head.take(), tail.take()};
}

std::string sheet_stream(const Sheet& sheet, const SheetSetting& setting, SharedStrings& strings) {
  return SheetWriter(sheet, setting, strings).write();
}

}  // namespace trvtrout::spreadsheet::biff8
