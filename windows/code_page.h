#pragma once

#include <string>
#include <string_view>

namespace trvtrout::windows {

// Bytes of the system's code page as 16-bit text, and text as such bytes; what it can't express becomes "?".
std::u16string from_code_page(std::string_view bytes);
std::string to_code_page(std::u16string_view text);

}  // namespace trvtrout::windows
