#pragma once

#include <string>
#include <string_view>

namespace trvtrout::text {

// UTF-8 bytes of `text`. A lone surrogate U+DC80..U+DCFF stands for the byte 80..FF; any other lone surrogate is
// written as the three bytes of its code point.
std::string to_utf8(std::u16string_view text);

// 16-bit text of `bytes`; a byte NN that isn't part of valid UTF-8 becomes the lone surrogate U+DCNN. to_utf8 brings
// every byte string back.
std::u16string from_utf8(std::string_view bytes);

// The same bytes with U+FFFD in place of each that isn't part of valid UTF-8.
std::string valid_utf8(std::string_view bytes);

}  // namespace trvtrout::text
