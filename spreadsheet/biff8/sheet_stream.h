#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/biff8/shared_strings.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::biff8 {

inline constexpr std::uint32_t kRows = 65536, kColumns = 256;
inline constexpr std::uint16_t kUsualRowHeight = 255;  // twips

// The records that stand in front of a sheet's columns and behind its cells, with its BOF and its EOF.
struct SheetFrame {
  std::string head, tail;
};

// What a new sheet takes from its workbook.
struct SheetSurroundings {
  std::string_view bof;       // the body of the workbook's BOF
  std::string_view settings;  // the records of calculation settings, which each sheet repeats
  std::uint16_t row_height;   // in twips
  std::size_t windows;        // in which the sheet is shown
};
SheetFrame new_frame(const SheetSurroundings& around);

// What a sheet's cells take from its workbook and from the sheet that they're put into.
struct SheetSetting {
  SheetFrame frame;
  std::vector<std::uint16_t> xfs;  // the cell format of each style
  std::uint16_t row_height;        // in twips
  std::string drawing;             // the records of the drawing layer
};

// The substream of a sheet, its texts put into `strings`. Raises WorkbookError beyond kRows and kColumns.
std::string sheet_stream(const Sheet& sheet, const SheetSetting& setting, SharedStrings& strings);

}  // namespace trvtrout::spreadsheet::biff8
