#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "spreadsheet/biff8/globals.h"

namespace trvtrout::spreadsheet::biff8 {

// The numbers of a sheet's drawing layer, which no other drawing of the workbook has.
struct Drawing {
  std::uint16_t number;
  std::uint32_t first_shape;
  std::uint32_t shapes = 2;  // how many there are: the layer itself and the drop-down
};

// Gives a drawing with the usual shapes its numbers in the workbook's drawing group, which is made if there is none.
// Raises WorkbookError.
Drawing add_drawing(Globals& globals);
// The same drawing with `shapes` of them, counted in the group. Raises WorkbookError.
Drawing with_shapes(Globals& globals, const Drawing& drawing, std::uint32_t shapes);

// The records of a drawing layer that holds the drop-down of a filter in A1.
std::string filter_drop_down(const Drawing& drawing);
// The record of a drawing layer that holds nothing, for a drawing that loses the drop-down and keeps its numbers.
std::string empty_layer(const Drawing& drawing);

// The numbers of the drawing layer that the body of a record begins with; nothing where it doesn't begin as one with no
// more than drop-downs does.
std::optional<Drawing> drawing_of(std::string_view body);
// Whether the body of an OBJ is the drop-down of a filter.
bool is_filter_drop_down(std::string_view object);

}  // namespace trvtrout::spreadsheet::biff8
