#include "compare/match.h"

#include <functional>

#include "tests/walks.h"

namespace trvtrout::tests {
namespace {

int comparisons;

struct CountedKey {
  std::int32_t value;
  auto operator<=>(const CountedKey& other) const { return ++comparisons, value <=> other.value; }
  bool operator==(const CountedKey& other) const { return ++comparisons, value == other.value; }
};

// Whatever the keys, their order, and however often one occurs: no search may look at many others.
TEST(MatchIndexTest, ComparesFewKeysForEachRecord) {
  constexpr std::int32_t kRecords = 20000;
  constexpr int kMostForEach = 45;  // three times the steps of a binary search
  const std::function<std::int32_t(std::int32_t)> families[] = {
      [](std::int32_t) { return 0; },
      [](std::int32_t number) { return number; },
      [](std::int32_t number) { return -number; },
      [](std::int32_t number) { return number % 2; },
      [](std::int32_t number) { return number % 141; },
      [](std::int32_t number) { return number / 141; },
      [](std::int32_t number) { return std::min(number, kRecords - number); },
      [](std::int32_t number) { return number * 7919 % kRecords; }};
  for (const auto& family : families) {
    const auto key_of = [&](std::int32_t number) { return CountedKey{family(number)}; };
    for (const bool from_the_last : {false, true}) {
      comparisons = 0;
      WorkingList list(kRecords);
      MatchIndex<CountedKey> index(list, key_of);
      for (std::int32_t number = 1; number <= kRecords; ++number) {
        const std::int32_t sought = from_the_last ? kRecords + 1 - number : number;
        const std::int32_t found = index.first_left(key_of(sought));
        ASSERT_NE(found, 0);
        // The partner needn't be what leaves the list.
        list.remove(from_the_last ? sought : found);
      }
      EXPECT_EQ(index.first_left(key_of(1)), 0);
      EXPECT_LT(comparisons, kRecords * kMostForEach)
          << "family " << &family - families << (from_the_last ? ", from the last" : "");
    }
  }
}

TEST_F(Walks, ByKeyAreThoseOfTheNestedScan) {
  for (int round = 0; round < 3000; ++round) {
    const auto primary = keys(), secondary = keys();
    const auto key_in = [](const std::vector<std::string>& list) {
      return [&list](std::int32_t number) { return MatchKey{.text = list[static_cast<std::size_t>(number - 1)]}; };
    };
    const auto same = [&](std::int32_t one, std::int32_t other) {
      return key_in(primary)(one) == key_in(secondary)(other);
    };
    const auto count = static_cast<std::int32_t>(primary.size()), others = static_cast<std::int32_t>(secondary.size());
    for (const PartnerFrom from : {PartnerFrom::kWorkingList, PartnerFrom::kWholeList}) {
      std::vector<Row> rows;
      ByKey policy(key_in(primary), key_in(secondary), others, from);
      walk(count, policy, RowLog{rows});
      ASSERT_EQ(rows, nested_scan(count, others, same, same, from == PartnerFrom::kWholeList)) << "round " << round;
    }
  }
}

}  // namespace
}  // namespace trvtrout::tests
