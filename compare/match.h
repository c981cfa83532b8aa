#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

// How the records of two lists find their partners. The rows come out exactly as from a nested scan that takes, for
// each primary record in turn, the first fitting record of a working list of the secondary ones and removes it; but
// each record costs no more than a binary search, whatever the keys, their order, and however often one occurs.
//
// Records are known by their numbers, counted from 1 as in the stored lists; 0 is none.
namespace trvtrout {

// What two records must have in common to be partners: up to two texts and two numbers. The texts must outlive it.
struct MatchKey {
  std::int32_t number = 0;
  std::int32_t second_number = 0;
  std::string_view text;
  std::string_view second_text;
  // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler makes of it is taken for a comparison with 0
  auto operator<=>(const MatchKey&) const = default;
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
template <class Key = MatchKey>
class MatchIndex {
 public:
  // key_of(number) gives the key of a secondary record, for each from 1 to the working list's count. `list` must
  // outlive the index.
  MatchIndex(const WorkingList& list, const auto& key_of) : list_(list) {
    entries_.reserve(static_cast<std::size_t>(list.count()));
    for (std::int32_t number = 1; number <= list.count(); ++number) entries_.push_back({key_of(number), number});
    std::ranges::stable_sort(entries_, {}, &Entry::key);
  }

  // The first record with this key, in the working list or not.
  std::int32_t first(const Key& key) const {
    const auto run = std::ranges::lower_bound(entries_, key, {}, &Entry::key);
    return run != entries_.end() && run->key == key ? run->number : 0;
  }
  // The first record with this key that is still in the working list.
  std::int32_t first_left(const Key& key) {
    const auto run = std::ranges::lower_bound(entries_, key, {}, &Entry::key);
    if (run == entries_.end()) return 0;
    for (auto at = run + run->gone; at != entries_.end() && at->key == key; ++at, ++run->gone) {
      if (!list_.removed(at->number)) return at->number;
    }
    return 0;
  }

 private:
  struct Entry {
    Key key;
    std::int32_t number;
    std::int32_t gone = 0;  // in the first entry with a key: so many of those with it are known to be removed
  };

  const WorkingList& list_;
  std::vector<Entry> entries_;  // by key, those with the same one in list order
};

// The walk. policy.match(number) finds the partner of a primary record and takes what the policy's rule says out of
// policy.list(); rows.pair(primary, secondary), rows.deleted(primary) and rows.added(secondary) are called in the order
// of the rows.
template <class Policy, class Rows>
void walk(std::int32_t primary_count, Policy& policy, Rows&& rows) {
  for (std::int32_t number = 1; number <= primary_count; ++number) {
    if (const std::int32_t partner = policy.match(number)) {
      rows.pair(number, partner);
    } else {
      rows.deleted(number);
    }
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
  ByKey(KeyOf primary_key, const KeyOf& secondary_key, std::int32_t secondary_count,
        PartnerFrom from = PartnerFrom::kWorkingList)
      : list_(secondary_count), index_(list_, secondary_key), primary_key_(std::move(primary_key)), from_(from) {}
  ByKey(const ByKey&) = delete;  // the index knows the list by its address
  ByKey& operator=(const ByKey&) = delete;

  std::int32_t match(std::int32_t primary) {
    const MatchKey key = primary_key_(primary);
    const std::int32_t leaving = index_.first_left(key);
    if (leaving) list_.remove(leaving);
    return from_ == PartnerFrom::kWholeList ? index_.first(key) : leaving;
  }
  const WorkingList& list() const noexcept { return list_; }

 private:
  WorkingList list_;
  MatchIndex<> index_;
  KeyOf primary_key_;
  PartnerFrom from_;
};

}  // namespace trvtrout
