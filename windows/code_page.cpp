#include "windows/code_page.h"

#include <algorithm>

#include "windows/system.h"

namespace trvtrout::windows {

std::u16string from_code_page(std::string_view bytes) {
  const auto length = static_cast<int>(bytes.size());
  // No character takes fewer bytes than it has units.
  std::u16string text(bytes.size(), u'\0');
  const int units = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, wide(text), length);
  text.resize(static_cast<std::size_t>(std::max(units, 0)));
  return text;
}

std::string to_code_page(std::u16string_view text) {
  const auto length = static_cast<int>(text.size());
  const auto* const units = reinterpret_cast<const wchar_t*>(text.data());
  // That code page has a byte sequence for every character, and refuses to be told what to do with the others.
  const bool utf8 = GetACP() == CP_UTF8;
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* const unknown = utf8 ? nullptr : "?";
  const auto convert = [&](char* into, int room) {
    return WideCharToMultiByte(CP_ACP, flags, units, length, into, room, unknown, nullptr);
  };
  std::string bytes(static_cast<std::size_t>(std::max(length == 0 ? 0 : convert(nullptr, 0), 0)), '\0');
  convert(bytes.data(), static_cast<int>(bytes.size()));
  return bytes;
}

}  // namespace trvtrout::windows
