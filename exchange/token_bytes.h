#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>

#include "exchange/json_tokens.h"
#include "exchange/texts.h"

// The bytes in the file of values that are one token in JSON. Each appends them to `out`, or raises Refusal and leaves
// `out` as it was.
namespace trvtrout::exchange {

template <class Plain>
void append_plain(std::string& out, Plain value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// The integer that the token spells, in the range of its type.
template <std::integral Integer>
Integer integer_of(const Token& token) {
  Integer integer = 0;
  const char* const end = token.text.data() + token.text.size();
  const auto [behind, error] = std::from_chars(token.text.data(), end, integer);
  if (token.kind != Token::Kind::kNumber || error != std::errc() || behind != end) {
    refuse("an integer from " + std::to_string(std::numeric_limits<Integer>::min()) + " to " +
               std::to_string(std::numeric_limits<Integer>::max()),
           token);
  }
  return integer;
}

// A number that the type can hold; what it holds is the nearest one.
template <std::floating_point Real>
Real real_of(const Token& token) {
  Real real = 0;
  const char* const end = token.text.data() + token.text.size();
  const auto [behind, error] = std::from_chars(token.text.data(), end, real);
  if (token.kind != Token::Kind::kNumber || error != std::errc() || behind != end) {
    refuse(sizeof(Real) == sizeof(float) ? "a number that 32 bits can hold" : "a number that 64 bits can hold", token);
  }
  return real;
}

void append_flag(std::string& out, const Token& token);
// A text and its length.
void append_text(std::string& out, const Token& token, Texts& texts);
// The same of bytes that are given as digits: what is no text in the code page.
void append_hex_text(std::string& out, const Token& token);
// Exactly `count` bytes.
void append_hex(std::string& out, const Token& token, std::size_t count);
// As many as there are; returns how many.
std::size_t append_hex(std::string& out, const Token& token);

}  // namespace trvtrout::exchange
