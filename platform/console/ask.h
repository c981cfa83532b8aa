#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace trvtrout::platform {

// Shows `question` until the answer begins with one of `letters` (lower case; upper case is taken too) and returns
// that letter; NUL at the end of the input.
char ask_letter(std::istream& in, std::ostream& out, const std::string& question, std::string_view letters);

// Shows `question` and returns the line typed, without blanks around; empty at the end of the input.
std::string ask_line(std::istream& in, std::ostream& out, const std::string& question);

}  // namespace trvtrout::platform
