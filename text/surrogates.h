#pragma once

#include <cstddef>
#include <string_view>

namespace trvtrout::text {

// The halves of a character beyond the first 65,536, which takes two units of 16-bit text.
constexpr bool is_high_half(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool is_low_half(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Whether a whole pair stands at this place.
constexpr bool is_pair_at(std::u16string_view text, std::size_t at) {
  return is_high_half(text[at]) && at + 1 < text.size() && is_low_half(text[at + 1]);
}

}  // namespace trvtrout::text
