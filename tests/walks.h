#pragma once

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <numeric>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace trvtrout::tests {

// The rows of a walk, told by the numbers of the records.
struct Row {
  std::int32_t primary, secondary;
  bool operator==(const Row&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.primary << '/' << row.secondary;
}

struct RowLog {
  std::vector<Row>& rows;
  void pair(std::int32_t primary, std::int32_t secondary) { rows.push_back({primary, secondary}); }
  void deleted(std::int32_t primary) { rows.push_back({primary, 0}); }
  void added(std::int32_t secondary) { rows.push_back({0, secondary}); }
};

// The plain nested scan: a working list that is searched from its first entry, and loses one entry for each match.
// matches(primary, entry) and leaves(primary, entry) are the two rules, on numbers from 1.
std::vector<Row> nested_scan(std::int32_t primaries, std::int32_t secondaries, const auto& matches, const auto& leaves,
                             bool whole_list = false) {
  std::vector<std::int32_t> whole(static_cast<std::size_t>(secondaries));
  std::iota(whole.begin(), whole.end(), 1);
  std::vector<std::int32_t> working = whole;
  std::vector<Row> rows;
  for (std::int32_t primary = 1; primary <= primaries; ++primary) {
    const auto& searched = whole_list ? whole : working;
    const auto partner = std::ranges::find_if(searched, [&](std::int32_t entry) { return matches(primary, entry); });
    if (partner == searched.end()) {
      rows.push_back({primary, 0});
      continue;
    }
    rows.push_back({primary, *partner});
    const auto leaving = std::ranges::find_if(working, [&](std::int32_t entry) { return leaves(primary, entry); });
    if (leaving != working.end()) working.erase(leaving);
  }
  for (const std::int32_t entry : working) rows.push_back({0, entry});
  return rows;
}

class Walks : public testing::Test {
 protected:
  int upto(int most) { return std::uniform_int_distribution(0, most)(random_); }
  // Few keys, so that most occur several times.
  std::vector<std::string> keys() {
    std::vector<std::string> all(static_cast<std::size_t>(upto(40)));
    for (auto& key : all) key = std::string(1, static_cast<char>('A' + upto(5)));
    return all;
  }

  std::mt19937 random_{20040601};
};

}  // namespace trvtrout::tests
