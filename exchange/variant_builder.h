#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "exchange/json_tokens.h"
#include "exchange/texts.h"

namespace trvtrout::exchange {

// Takes the tokens of one variant's object, whose members may come in any order, and makes its bytes once it's there
// as a whole.
class VariantBuilder {
 public:
  // Begins with the token that opens the object.
  void begin() noexcept { tokens_.clear(), texts_.clear(), depth_ = 0; }
  // True while the object isn't at its end. Raises Refusal when it nests deeper than variants do, or holds more than
  // 2 GiB of texts.
  bool take(const Token& token, std::uint64_t line);
  // Appends the bytes. Raises Refusal, with the place in the variant.
  void append(std::string& out, Texts& texts) const;

 private:
  friend class VariantWalker;
  // Small, for there is one for each number of a long array.
  struct Held {
    std::uint32_t at, length;  // of its text
    std::uint32_t line;
    Token::Kind kind;
    bool flag;
  };

  std::vector<Held> tokens_;
  std::string texts_;
  int depth_ = 0;
};

}  // namespace trvtrout::exchange
