#pragma once

#include <cstdint>

#include "workbook/automation.h"

namespace trvtrout {

// Gives the labels in column A their colours and a bold font, in the rows from `first_row` to `last_row`, both
// included and counted from 1. Raises what the sheet raises.
void color_labels(automation::Worksheet& sheet, std::int64_t first_row, std::int64_t last_row);

}  // namespace trvtrout
