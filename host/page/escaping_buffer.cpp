#include "host/page/escaping_buffer.h"

namespace trvtrout::host {
namespace {

// What the UTF-8 of U+2028 and U+2029 have in common; A8 or A9 follows.
constexpr std::string_view kBegin = "\xE2\x80";
constexpr std::string_view kSpecial = "<>&\xE2";

std::string_view escape_of(char character) {
  switch (character) {
    case '<':
      return "\\u003c";
    case '>':
      return "\\u003e";
    default:
      return "\\u0026";
  }
}

}  // namespace

void EscapingBuffer::finish() {
  page_ << kBegin.substr(0, begun_);
  begun_ = 0;
}

EscapingBuffer::int_type EscapingBuffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
  const char byte = traits_type::to_char_type(character);
  put({&byte, 1});
  return page_ ? character : traits_type::eof();
}

std::streamsize EscapingBuffer::xsputn(const char* bytes, std::streamsize size) {
  put({bytes, static_cast<std::size_t>(size)});
  return page_ ? size : 0;
}

// Goes on with a sign of three bytes that was begun, and returns how many bytes of `text` belonged to it.
std::size_t EscapingBuffer::put_end_of_line_sign(std::string_view text) {
  std::size_t taken = 0;
  while (begun_ < kBegin.size() && taken < text.size() && text[taken] == kBegin[begun_]) ++taken, ++begun_;
  if (taken == text.size()) return taken;
  if (begun_ == kBegin.size() && (text[taken] == '\xA8' || text[taken] == '\xA9')) {
    page_ << (text[taken] == '\xA8' ? "\\u2028" : "\\u2029");
    begun_ = 0;
    return taken + 1;
  }
  finish();
  return taken;
}

void EscapingBuffer::put(std::string_view text) {
  if (begun_ > 0) text.remove_prefix(put_end_of_line_sign(text));
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of(kSpecial), text.size());
    page_ << text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) return;
    if (text.front() == kBegin.front()) {
      text.remove_prefix(put_end_of_line_sign(text));
    } else {
      page_ << escape_of(text.front());
      text.remove_prefix(1);
    }
  }
}

}  // namespace trvtrout::host
