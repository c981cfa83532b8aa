#pragma once

#include <vector>

#include "spreadsheet/sheet.h"

namespace trvtrout::platform {

// How wide the columns have to be for their cells to be read, in digits of the normal font; 0 for those that the
// default width suits. No entry for columns behind the last one with a cell.
std::vector<double> column_widths(const spreadsheet::Sheet& sheet);

}  // namespace trvtrout::platform
