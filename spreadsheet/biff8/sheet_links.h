#pragma once

#include <cstddef>
#include <cstdint>

#include "spreadsheet/biff8/globals.h"

namespace trvtrout::spreadsheet::biff8 {

// Makes room for a sheet at `position` in all that refers to sheets by their number (formulas and names through the
// tables of references, windows) and makes it the active one, the only one that is selected. `sheets` counts the new
// one. Raises WorkbookError.
void shift_sheet_numbers(Globals& globals, std::size_t position, std::size_t sheets);

// Gives the sheet at `position` the hidden name that a filter over A1 to A`rows` has; `sheets` as above.
void set_filter_name(Globals& globals, std::size_t position, std::size_t sheets, std::size_t rows);

}  // namespace trvtrout::spreadsheet::biff8
