#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

// JSON as it is read, token by token, with lines for messages.
namespace trvtrout::exchange {

struct Token {
  enum class Kind : std::uint8_t {
    kNull,
    kBoolean,
    kNumber,
    kString,
    kKey,
    kBeginObject,
    kEndObject,
    kBeginArray,
    kEndArray,
  };
  Kind kind;
  bool flag = false;      // of a boolean
  std::string_view text;  // of a number (its digits), string or key (what it says); until the next token
};

// What a JSON document may not hold: what was wanted and what was found, for people.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  // Inside what was taken as a whole: the place in it and its line.
  Refusal(const std::string& what, std::string place, std::uint64_t line)
      : std::runtime_error(what), place_(std::move(place)), line_(line) {}

  const std::string& place() const noexcept { return place_; }
  std::uint64_t line() const noexcept { return line_; }

 private:
  std::string place_;
  std::uint64_t line_ = 0;
};

// Raises the Refusal of this token where `wanted` should stand.
[[noreturn]] void refuse(const std::string& wanted, const Token& found);

// Fills what it's given with the next bytes of a document and returns how many came; 0 at its end.
using JsonSource = std::function<std::size_t(std::span<char> into)>;

class TokenReader {
 public:
  // What the tokens are given to. What it raises comes out of read().
  using Take = std::function<void(const Token&)>;

  explicit TokenReader(JsonSource source);
  ~TokenReader();
  TokenReader(const TokenReader&) = delete;
  TokenReader& operator=(const TokenReader&) = delete;

  // Reads one whole value, and nothing but white space behind it. Raises Refusal for what is no JSON, and for a single
  // text or number of more than 1 GiB.
  void read(const Take& take);
  // The line of the token last given out, or of what was refused, counted from 1.
  std::uint64_t line();

 private:
  class Input;
  std::unique_ptr<Input> input_;
};

}  // namespace trvtrout::exchange
