#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

// How the records of two lists find their partners. The rows come out exactly as from a nested scan that takes, for
// each primary record in turn, the first fitting record of a working list of the secondary ones and removes it; but
// the work is linear in the number of records, whatever their order and however often a key occurs.
//
// Records are known by their numbers, counted from 1 as in the stored lists; 0 is none.
namespace trvtrout {

// What two records must have in common to be partners: up to two texts and two numbers. The texts must outlive it.
struct MatchKey {
  std::string_view text;
  std::string_view second_text;
  std::int32_t number = 0;
  std::int32_t second_number = 0;
  bool operator==(const MatchKey&) const = default;
};

// Gives the key of a record by its number.
using KeyOf = std::function<MatchKey(std::int32_t)>;

// The secondary records that are still in the working list.
class WorkingList {
 public:
  explicit WorkingList(std::int32_t count) : removed_(static_cast<std::size_t>(count), false) {}
  std::int32_t count() const noexcept { return static_cast<std::int32_t>(removed_.size()); }
  bool removed(std::int32_t number) const { return removed_[static_cast<std::size_t>(number - 1)]; }
  void remove(std::int32_t number) { removed_[static_cast<std::size_t>(number - 1)] = true; }

 private:
  std::vector<bool> removed_;
};

// Finds secondary records by one kind of key.
class MatchIndex {
 public:
  // key_of(number) gives the key of a secondary record, for each from 1 to the working list's count. `list` must
  // outlive the index.
  MatchIndex(const WorkingList& list, KeyOf key_of);

  // The first record with this key that is still in the working list.
  std::int32_t first_left(const MatchKey& key);
  // The first record with this key, in the working list or not.
  std::int32_t first(const MatchKey& key) const;
  // Has the processor fetch what a search for this key reads first.
  void expect(const MatchKey& key) const;
  // What a search for this key will most likely find; no record is read for it.
  std::int32_t guess(const MatchKey& key) const;

 private:
  // The records of one key. Keys aren't kept: comparing them reads the record, which its row needs anyway, and a table
  // without them stays in the cache.
  struct Chain {
    std::uint32_t hash;
    std::int32_t first;  // of all records with the key; 0 in a free place
    std::int32_t left;   // no record in front of it is left
  };
  // The place of the key's chain, or the free one where it would stand.
  std::size_t place_of(const MatchKey& key, std::uint32_t hash) const;

  const WorkingList& list_;
  KeyOf key_of_;
  std::vector<Chain> chains_;       // a power of two, half of it free
  std::vector<std::int32_t> next_;  // by number - 1: the next record with the same key
};

// The walk. policy.partner(number) finds the partner of a primary record, policy.remove(number) takes what its rule
// says out of policy.list(); rows.pair(primary, secondary), rows.deleted(primary) and rows.added(secondary) are called
// in the order of the rows.
//
// Records of lists in another order lie scattered in memory. So that they are fetched while others are worked on, a
// batch goes through in steps: policy.expect(number) of what its search will read first, policy.guess(number) for the
// likely partner, rows.expect(secondary) and rows.expect_texts(secondary) of it, if the rows have these, and only then
// the search and the rows.
template <class Policy, class Rows>
void walk(std::int32_t primary_count, Policy& policy, Rows&& rows) {
  constexpr std::int32_t kBatch = 16;
  std::array<std::int32_t, kBatch> likely{};
  for (std::int32_t first = 1; first <= primary_count; first += kBatch) {
    const std::int32_t behind = std::min(primary_count, first + kBatch - 1) + 1;
    std::int32_t last = first;
    std::exception_ptr failure;
    try {
      for (; last < behind; ++last) policy.expect(last);
    } catch (...) {
      // The primary list ends here; what stands in front of its end has rows.
      failure = std::current_exception();
    }
    const auto each = [&](const auto& step) {
      for (std::int32_t number = first; number < last; ++number) step(number, likely[std::size_t(number - first)]);
    };
    if constexpr (requires { rows.expect(first); }) {
      each([&](std::int32_t number, std::int32_t& guess) {
        guess = policy.guess(number);
        if (guess != 0) rows.expect(guess);
      });
      each([&](std::int32_t, std::int32_t guess) {
        if (guess != 0) rows.expect_texts(guess);
      });
    }
    each([&](std::int32_t number, std::int32_t) {
      if (const std::int32_t partner = policy.partner(number)) {
        rows.pair(number, partner);
        policy.remove(number);
      } else {
        rows.deleted(number);
      }
    });
    if (failure) std::rethrow_exception(failure);
  }
  for (std::int32_t number = 1; number <= policy.list().count(); ++number) {
    if (!policy.list().removed(number)) rows.added(number);
  }
}

// Where a partner comes from.
enum class PartnerFrom {
  kWorkingList,  // each secondary record is partner once
  kWholeList,    // the first record with the key, though it may be partner already
};

// Partners by key. Each match takes the first record with the key that is left out of the working list.
class ByKey {
 public:
  ByKey(KeyOf primary_key, KeyOf secondary_key, std::int32_t secondary_count,
        PartnerFrom from = PartnerFrom::kWorkingList)
      : list_(secondary_count),
        index_(list_, std::move(secondary_key)),
        primary_key_(std::move(primary_key)),
        from_(from) {}
  ByKey(const ByKey&) = delete;  // the index knows the list by its address
  ByKey& operator=(const ByKey&) = delete;

  void expect(std::int32_t primary) const { index_.expect(primary_key_(primary)); }
  std::int32_t guess(std::int32_t primary) const { return index_.guess(primary_key_(primary)); }
  std::int32_t partner(std::int32_t primary) {
    const MatchKey key = primary_key_(primary);
    leaving_ = index_.first_left(key);
    return from_ == PartnerFrom::kWholeList ? index_.first(key) : leaving_;
  }
  void remove(std::int32_t) {
    if (leaving_) list_.remove(leaving_);
  }
  const WorkingList& list() const noexcept { return list_; }

 private:
  WorkingList list_;
  MatchIndex index_;
  KeyOf primary_key_;
  PartnerFrom from_;
  std::int32_t leaving_ = 0;  // after a match
};

}  // namespace trvtrout
