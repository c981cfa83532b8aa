#pragma once

#include <string>

namespace trvtrout::platform {

// UTF-8 for a terminal: CR LF is a newline; any other control character, and a byte 80..9F of a file name that isn't
// UTF-8, is shown as \xNN, so that no text can steer the terminal.
std::string printable(const std::u16string& text);

// The same on one line: a blank for each newline.
std::string printable_line(const std::u16string& text);

}  // namespace trvtrout::platform
