#include "exchange/token_bytes.h"

#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::exchange {
namespace {

constexpr std::size_t kLongestText = 65535;

void append_with_length(std::string& out, std::string_view bytes) {
  if (bytes.size() > kLongestText) {
    throw Refusal("a text of " + std::to_string(bytes.size()) + " bytes; a file holds texts of at most 65,535");
  }
  append_plain(out, static_cast<std::uint16_t>(bytes.size()));
  out.append(bytes);
}

bool is_utf8(std::string_view text) {
  const std::u16string units = text::from_utf8(text);
  for (std::size_t at = 0; at < units.size(); ++at) {
    if ((units[at] & 0xF800) != 0xD800) continue;
    if (!text::is_pair_at(units, at)) return false;
    ++at;
  }
  return true;
}

int digit_of(char c) { return c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1; }

void require_string(const Token& token, const std::string& wanted) {
  if (token.kind != Token::Kind::kString) refuse(wanted, token);
}

}  // namespace

void append_flag(std::string& out, const Token& token) {
  if (token.kind != Token::Kind::kBoolean) refuse("true or false", token);
  append_plain(out, static_cast<std::int16_t>(token.flag ? -1 : 0));
}

void append_text(std::string& out, const Token& token, Texts& texts) {
  require_string(token, "a text");
  const auto bytes = texts.to_bytes(token.text);
  if (bytes) return append_with_length(out, *bytes);
  if (!is_utf8(token.text)) throw Refusal("a text that isn't UTF-8, or has half of a surrogate pair in it");
  refuse("a text that code page " + std::to_string(texts.code_page()) + " can express, or {\"hex\": its bytes}", token);
}

void append_hex_text(std::string& out, const Token& token) {
  std::string bytes;
  append_hex(bytes, token);
  append_with_length(out, bytes);
}

void append_hex(std::string& out, const Token& token, std::size_t count) {
  const std::string wanted = std::to_string(2 * count) + " digits 0 to 9 and a to f";
  require_string(token, wanted);
  if (token.text.size() != 2 * count) refuse(wanted, token);
  append_hex(out, token);
}

std::size_t append_hex(std::string& out, const Token& token) {
  const char* const wanted = "an even number of digits 0 to 9 and a to f";
  require_string(token, wanted);
  if (token.text.size() % 2 != 0) refuse(wanted, token);
  const std::size_t start = out.size();
  for (std::size_t at = 0; at < token.text.size(); at += 2) {
    const int high = digit_of(token.text[at]), low = digit_of(token.text[at + 1]);
    if (high < 0 || low < 0) {
      out.resize(start);
      refuse(wanted, token);
    }
    out += static_cast<char>(high << 4 | low);
  }
  return token.text.size() / 2;
}

}  // namespace trvtrout::exchange
