#pragma once

#include <cstdint>
#include <vector>

#include "spreadsheet/biff8/globals.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::biff8 {

// The numbers of the cell formats that show `styles`, added to the workbook where it has none like them. Raises
// WorkbookError where the workbook is full.
std::vector<std::uint16_t> add_styles(Globals& globals, const std::vector<CellStyle>& styles);

}  // namespace trvtrout::spreadsheet::biff8
