#pragma once

#include <string>

#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet {

// The sheet that a spreadsheet with US settings makes of a comma-separated text (UTF-8): cells typed, with the number
// formats that go with what was recognised; no name, no column formats. A text that would be a formula stays a text.
// An empty line is a row without cells; a date without a year is one of `present_year`. Reading stops behind
// the first row or cell that is beyond `limits`. Raises std::length_error for a text of 4 GiB or more.
Sheet read_comma_text(std::string text, int present_year, SheetLimits limits = {1048576, 16384});

}  // namespace trvtrout::spreadsheet
