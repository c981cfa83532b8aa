#include "text/utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "text/surrogates.h"

namespace trvtrout::text {
namespace {

constexpr char32_t kEscapedBytes = 0xDC00;
constexpr char32_t kFirstSupplementary = 0x10000;

void append_sequence(std::string& out, char32_t code) {
  const auto put = [&](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
    return;
  }
  const int continuations = code < 0x800 ? 1 : code < kFirstSupplementary ? 2 : 3;
  constexpr std::array<char32_t, 4> kLeadBits = {0, 0xC0, 0xE0, 0xF0};
  put(kLeadBits[static_cast<std::size_t>(continuations)] | (code >> (6 * continuations)));
  for (int left = continuations - 1; left >= 0; --left) put(0x80 | ((code >> (6 * left)) & 0x3F));
}

struct Sequence {
  char32_t code;
  std::size_t length;  // 0: not valid UTF-8
};

Sequence first_sequence(std::string_view bytes) {
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
  if (length == 0 || lead > 0xF4 || bytes.size() < length) return {0, 0};
  char32_t code = lead & (0x7FU >> length);
  for (std::size_t index = 1; index < length; ++index) {
    if ((byte(index) & 0xC0) != 0x80) return {0, 0};
    code = (code << 6) | (byte(index) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, kFirstSupplementary};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kSmallest[length] || surrogate || code > 0x10FFFF) return {0, 0};
  return {code, length};
}

}  // namespace

std::string to_utf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = text[at];
    if (is_pair_at(text, at)) {
      ++at;
      append_sequence(out, kFirstSupplementary + ((unit & 0x3FFU) << 10) + (text[at] & 0x3FFU));
    } else if (unit >= kEscapedBytes + 0x80 && unit <= kEscapedBytes + 0xFF) {
      out.push_back(static_cast<char>(unit - kEscapedBytes));
    } else {
      append_sequence(out, unit);
    }
  }
  return out;
}

std::u16string from_utf8(std::string_view bytes) {
  std::u16string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto [code, length] = first_sequence(bytes);
    if (length == 0) {
      out.push_back(static_cast<char16_t>(kEscapedBytes + static_cast<unsigned char>(bytes[0])));
    } else if (code >= kFirstSupplementary) {
      out.push_back(static_cast<char16_t>(0xD800 + ((code - kFirstSupplementary) >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(code));
    }
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

std::string valid_utf8(std::string_view bytes) {
  std::string valid;
  while (!bytes.empty()) {
    const std::size_t length = first_sequence(bytes).length;
    valid += length == 0 ? "\uFFFD" : bytes.substr(0, length);
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

}  // namespace trvtrout::text
