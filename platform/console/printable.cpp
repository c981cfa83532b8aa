#include "platform/console/printable.h"

#include <algorithm>

#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::platform {
namespace {

bool is_control(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F); }

// An 8-bit terminal takes these bytes for controls, and behind a byte C2 they are controls in UTF-8.
bool is_control_byte(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDC9F; }

}  // namespace

std::string printable(const std::u16string& text) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::u16string shown;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = text[at];
    const bool line_end = unit == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    const bool second_half = at > 0 && text::is_high_half(text[at - 1]);
    if (line_end) continue;
    if (unit != u'\n' && (is_control(unit) || (is_control_byte(unit) && !second_half))) {
      shown += u"\\x";
      shown += kDigits[(unit >> 4) & 0xF];
      shown += kDigits[unit & 0xF];
    } else {
      shown += unit;
    }
  }
  return text::to_utf8(shown);
}

std::string printable_line(const std::u16string& text) {
  std::string line = printable(text);
  std::ranges::replace(line, '\n', ' ');
  return line;
}

}  // namespace trvtrout::platform
