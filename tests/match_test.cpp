#include "compare/match.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace trvtrout::tests {
namespace {

// The work is linear as long as a search reads no record but one of its key: whatever keys differ in must tell.
TEST(MatchIndexTest, ReadsNoRecordOfAnotherKey) {
  struct Key {
    std::string text, second_text;
    std::int32_t number = 0, second_number = 0;
  };
  constexpr int kRecords = 20000;
  const auto digits = [](int number) { return std::to_string(kRecords + number); };
  const std::string filling(40, 'x');
  const std::function<Key(int)> families[] = {
      [](int number) { return Key{.number = number}; },
      [](int number) { return Key{.number = number << 16}; },
      [](int number) { return Key{.second_number = -number}; },
      [&](int number) { return Key{.text = digits(number)}; },
      [&](int number) { return Key{.text = filling + digits(number)}; },
      [&](int number) { return Key{.text = digits(number) + filling}; },
      [&](int number) { return Key{.text = filling, .second_text = digits(number)}; },
      [](int number) { return Key{.text = std::string(std::size_t(number % 100), '\0'), .number = number / 100}; }};
  for (const auto& family : families) {
    std::vector<Key> keys;
    for (int number = 1; number <= kRecords; ++number) keys.push_back(family(number));
    int read = 0;
    const auto key_of = [&](std::int32_t number) {
      ++read;
      const Key& key = keys[static_cast<std::size_t>(number - 1)];
      return MatchKey{key.text, key.second_text, key.number, key.second_number};
    };
    const WorkingList list(kRecords);
    MatchIndex index(list, key_of);
    for (std::int32_t number = 1; number <= kRecords; ++number) ASSERT_EQ(index.first_left(key_of(number)), number);
    EXPECT_LT(read, 3 * kRecords + 10) << "family " << &family - families;
  }
}

}  // namespace
}  // namespace trvtrout::tests
