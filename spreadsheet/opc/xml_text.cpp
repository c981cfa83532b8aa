#include "spreadsheet/opc/xml_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::size_t kEscapeLength = 7;  // _xHHHH_

enum class Place : std::uint8_t { kElement, kAttribute };

int hex_digit(char32_t character) {
  if (character >= '0' && character <= '9') return static_cast<int>(character) - '0';
  const char32_t lower = character | 0x20;
  return lower >= 'a' && lower <= 'f' ? static_cast<int>(lower) - 'a' + 10 : -1;
}

// The code unit of the escape that `text` begins with; -1 without one.
template <class Character>
int escaped_unit(std::basic_string_view<Character> text) {
  if (text.size() < kEscapeLength || text[0] != '_' || text[1] != 'x' || text[6] != '_') return -1;
  int unit = 0;
  for (const Character character : text.substr(2, 4)) {
    const int digit = hex_digit(static_cast<std::make_unsigned_t<Character>>(character));
    if (digit < 0) return -1;
    unit = unit * 16 + digit;
  }
  return unit;
}

void append_escape(std::string& out, unsigned unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += "_x";
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(unit >> shift) & 0xF];
  out += '_';
}

// `run` has no ASCII character in it.
void append_beyond_ascii(std::string& out, std::string_view run) {
  const std::u16string units = text::from_utf8(run);
  for (std::size_t at = 0; at < units.size(); ++at) {
    const char16_t unit = units[at];
    // Pairs come whole and only from valid UTF-8; a lone unit is always a low one that stands for a byte.
    const std::size_t length = text::is_high_half(unit) ? 2 : 1;
    const bool lone = text::is_low_half(unit);
    if (lone || unit >= 0xFFFE) {
      append_escape(out, unit);
    } else {
      out += text::to_utf8(std::u16string_view(units).substr(at, length));
    }
    at += length - 1;
  }
}

// An entity, where XML needs one; an escape for what it can't hold.
void append_special(std::string& out, char character, Place place) {
  switch (character) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '"':
      out += place == Place::kAttribute ? "&quot;" : "\"";
      return;
    case '\t':
      out += place == Place::kAttribute ? "&#9;" : "\t";
      return;
    case '\n':
      out += place == Place::kAttribute ? "&#10;" : "\n";
      return;
    default:
      append_escape(out, static_cast<unsigned char>(character));
  }
}

void append_escaped(std::string& out, std::string_view text, Place place) {
  const auto is_ascii = [](char character) { return static_cast<signed char>(character) >= 0; };
  const auto is_plain = [](char character) {
    return character >= ' ' && character != '&' && character != '<' && character != '>' && character != '"' &&
           character != '_';
  };
  static_assert(static_cast<char>(-1) < 0, "bytes beyond ASCII must not be taken for plain ones");
  while (!text.empty()) {
    const auto plain_end = static_cast<std::size_t>(std::ranges::find_if_not(text, is_plain) - text.begin());
    out += text.substr(0, plain_end);
    text.remove_prefix(plain_end);
    if (text.empty()) return;
    std::size_t taken = 1;
    if (!is_ascii(text[0])) {
      taken = static_cast<std::size_t>(std::ranges::find_if(text, is_ascii) - text.begin());
      append_beyond_ascii(out, text.substr(0, taken));
    } else if (text[0] == '_') {
      out += escaped_unit(text) >= 0 ? "_x005F_" : "_";
    } else {
      append_special(out, text[0], place);
    }
    text.remove_prefix(taken);
  }
}

}  // namespace

void append_xml_text(std::string& out, std::string_view text) { append_escaped(out, text, Place::kElement); }

std::string xml_attribute(std::string_view text) {
  std::string out = "\"";
  append_escaped(out, text, Place::kAttribute);
  return out + '"';
}

std::string without_escapes(std::string_view value) {
  const std::u16string units = text::from_utf8(value);
  std::u16string_view rest = units;
  std::u16string out;
  while (!rest.empty()) {
    const int unit = escaped_unit(rest);
    out += unit >= 0 ? static_cast<char16_t>(unit) : rest[0];
    rest.remove_prefix(unit >= 0 ? kEscapeLength : 1);
  }
  return text::to_utf8(out);
}

}  // namespace trvtrout::spreadsheet::ooxml
