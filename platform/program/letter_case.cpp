#include <cwctype>
#include <locale.h>

#include "platform/program/sheet_names.h"
#include "text/utf8.h"

namespace trvtrout::platform {

std::u16string without_case(std::string_view name) {
  static const locale_t kUnicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  std::u16string text = text::from_utf8(name);
  for (char16_t& unit : text) {
    if (kUnicode) unit = static_cast<char16_t>(towlower_l(unit, kUnicode));
  }
  return text;
}

}  // namespace trvtrout::platform
