#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>

namespace trvtrout::text {

// Takes a text apart from the left, ASCII letters with case ignored. What can't be taken leaves the text as it was.
// The text must outlive the scanner and what it gives.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool at_end() const { return rest_.empty(); }

  // `wanted` in upper case.
  bool take(char wanted) {
    if (rest_.empty() || upper(rest_[0]) != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }

  // `wanted` in upper case.
  bool take_word(std::string_view wanted) {
    Scanner ahead = *this;
    for (const char letter : wanted) {
      if (!ahead.take(letter)) return false;
    }
    *this = ahead;
    return true;
  }

  bool take_blanks() {
    const std::size_t before = rest_.size();
    while (take(' ') || take('\t')) continue;
    return rest_.size() != before;
  }

  // The run of digits that comes next; empty when there is none.
  std::string_view take_digits() {
    const std::string_view run = rest_.substr(0, digits());
    rest_.remove_prefix(run.size());
    return run;
  }

  // The length of the run of digits that was taken; 0 when there is none of `least` to `most` digits. `most` is at
  // most 9.
  std::size_t take_number(std::size_t least, std::size_t most, int& number) {
    const std::size_t length = digits();
    if (length < least || length > most) return 0;
    std::from_chars(rest_.data(), rest_.data() + length, number);
    rest_.remove_prefix(length);
    return length;
  }

 private:
  static char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  }

  std::size_t digits() const {
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] >= '0' && rest_[length] <= '9') ++length;
    return length;
  }

  std::string_view rest_;
};

}  // namespace trvtrout::text
