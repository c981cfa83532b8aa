#pragma once

#include <string>

#include "platform/spreadsheet/sheet.h"

namespace trvtrout::spreadsheet {

// The sheet that a spreadsheet with US settings makes of a comma-separated text (UTF-8): cells typed, with the number
// formats that go with what was recognised; no name, no column formats. A text that would be a formula stays a text.
Sheet read_comma_text(std::string text, int present_year);

}  // namespace trvtrout::spreadsheet
