#pragma once

#include <cstdint>
#include <string>

#include "spreadsheet/biff8/globals.h"

namespace trvtrout::spreadsheet::biff8 {

// The numbers of a sheet's drawing layer, which no other drawing of the workbook has.
struct Drawing {
  std::uint16_t number;
  std::uint32_t first_shape;
};

// Gives a drawing with two shapes its numbers in the workbook's drawing group, which is made if there is none. Raises
// WorkbookError.
Drawing add_drawing(Globals& globals);

// The records of a drawing layer that holds the drop-down of a filter in A1.
std::string filter_drop_down(const Drawing& drawing);

}  // namespace trvtrout::spreadsheet::biff8
