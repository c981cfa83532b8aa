#pragma once

#include <optional>
#include <string_view>

#include "spreadsheet/text/cell_value.h"

namespace trvtrout::spreadsheet {

// The date, the time of day or the date with a time that `text` (without blanks around it) spells; nothing for another
// text, for a day that no calendar has and for one outside the years 1900 to 9999.
std::optional<CellValue> date_value(std::string_view text, int present_year);

}  // namespace trvtrout::spreadsheet
