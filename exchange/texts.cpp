#include "exchange/texts.h"

#include <cstdint>
#include <cstring>

#include "text/utf8.h"

namespace trvtrout::exchange {
namespace {

// Nearly every text is; eight bytes at a time it costs next to nothing to know.
bool is_ascii(std::string_view bytes) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  const char* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= sizeof(std::uint64_t); at += sizeof(std::uint64_t), left -= sizeof(std::uint64_t)) {
    std::uint64_t eight;
    std::memcpy(&eight, at, sizeof eight);
    if ((eight & kHighBits) != 0) return false;
  }
  unsigned char all = 0;
  for (; left > 0; ++at, --left) all = static_cast<unsigned char>(all | static_cast<unsigned char>(*at));
  return all < 0x80;
}

}  // namespace

std::optional<std::string_view> Texts::to_utf8(std::string_view bytes) {
  if (is_ascii(bytes)) return bytes;
  const std::u16string text = decode_(bytes);
  if (encode_(text) != bytes) return {};
  made_ = text::to_utf8(text);
  return made_;
}

std::optional<std::string_view> Texts::to_bytes(std::string_view text) {
  if (is_ascii(text)) return text;
  const std::u16string units = text::from_utf8(text);
  made_ = encode_(units);
  if (decode_(made_) != units) return {};
  return made_;
}

}  // namespace trvtrout::exchange
