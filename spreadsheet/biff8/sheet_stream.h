#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/biff8/drawing.h"
#include "spreadsheet/biff8/shared_strings.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::biff8 {

inline constexpr std::uint32_t kRows = 65536, kColumns = 256;
inline constexpr std::uint16_t kUsualRowHeight = 255;  // twips

// What a sheet takes from its workbook.
struct SheetSurroundings {
  std::string_view bof;            // the body of the workbook's BOF
  std::vector<std::uint16_t> xfs;  // the cell format of each style
  std::uint16_t row_height;        // in twips
  std::string_view settings;       // the records of calculation settings, which each sheet repeats
  std::size_t windows;             // in which the sheet is shown
  std::optional<Drawing> drawing;  // of the filter's drop-down
};

// The substream of a sheet, its texts put into `strings`. Raises WorkbookError beyond kRows and kColumns.
std::string sheet_stream(const Sheet& sheet, const SheetSurroundings& around, SharedStrings& strings);

}  // namespace trvtrout::spreadsheet::biff8
