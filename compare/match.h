#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <span>
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

// A key that is looked for, with the hash that finds it.
struct SoughtKey : MatchKey {
  SoughtKey(const MatchKey& key = {});
  std::uint32_t hash;
};

// Finds secondary records by one kind of key.
class MatchIndex {
 public:
  // key_of(number) gives the key of a secondary record, for each from 1 to the working list's count. `list` must
  // outlive the index.
  MatchIndex(const WorkingList& list, KeyOf key_of);

  // The first record with this key that is still in the working list.
  std::int32_t first_left(const SoughtKey& key);
  // The first record with this key, in the working list or not.
  std::int32_t first(const SoughtKey& key) const;
  // What a search for this key will most likely find; no record is read for it.
  std::int32_t guess(const SoughtKey& key) const;

 private:
  // The records of one key. Keys aren't kept: comparing them reads the record, which its row needs anyway, and a table
  // without them stays in the cache.
  struct Chain {
    std::uint32_t hash;
    std::int32_t first;  // of all records with the key; 0 in a free place
    std::int32_t left;   // no record in front of it is left
  };
  // The place of the chain with this hash of which is_key(first) holds, or the free one where it would stand.
  template <class IsKey>
  std::size_t place_of(std::uint32_t hash, IsKey is_key) const;
  std::size_t place_of(const SoughtKey& key) const;

  const WorkingList& list_;
  KeyOf key_of_;
  std::vector<Chain> chains_;       // a power of two, half of it free
  int unused_bits_;                 // of a hash, below those that give its place
  std::vector<std::int32_t> next_;  // by number - 1: the next record with the same key
};

// A search for the partner of a primary record.
struct Search {
  MatchIndex* index;  // where it is looked for; null for a record that has none
  SoughtKey key;
};

// A primary record on the way to its row.
struct Step {
  std::int32_t number;
  Search search;
  std::int32_t likely;  // the partner that its search will most likely find
};

// So many records go through the walk together.
constexpr std::int32_t kBatch = 16;

// Rows that show the records of two lists, which can be fetched ahead.
template <class Rows>
concept ShowsSides = requires(const Rows& rows) {
  rows.primary.prefetch(1);
  rows.primary.prefetch_texts(1);
  rows.secondary.prefetch(1);
  rows.secondary.prefetch_texts(1);
};

// Fetches what the next batches read of the primary list: the texts of the batch behind the one that begins with
// `first`, and the records of the one after.
template <class Rows>
void prefetch_primary(const Rows& rows, std::int32_t first) {
  for (std::int32_t number = first + kBatch; number < first + 2 * kBatch; ++number) rows.primary.prefetch_texts(number);
  for (std::int32_t number = first + 2 * kBatch; number < first + 3 * kBatch; ++number) rows.primary.prefetch(number);
}

// Fetches the likely partners of a batch.
template <class Rows>
void prefetch_partners(const Rows& rows, std::span<Step> batch) {
  for (Step& step : batch) {
    if (step.search.index) step.likely = step.search.index->guess(step.search.key);
    rows.secondary.prefetch(step.likely);
  }
  for (const Step& step : batch) rows.secondary.prefetch_texts(step.likely);
}

// The walk. policy.search(number) tells how a primary record finds its partner, policy.partner(search) finds it,
// policy.remove(number) takes what the policy's rule says out of policy.list(); rows.pair(primary, secondary),
// rows.deleted(primary) and rows.added(secondary) are called in the order of the rows.
//
// Records of lists in another order lie scattered in memory, and one by one each would be waited for. So a batch of
// searches begins together, and what they will read is fetched before the first of its rows.
template <class Policy, class Rows>
void walk(std::int32_t primary_count, Policy& policy, Rows&& rows) {
  std::vector<Step> batch;
  batch.reserve(kBatch);
  std::exception_ptr failure;
  for (std::int32_t number = 1; number <= primary_count && !failure;) {
    batch.clear();
    if constexpr (ShowsSides<Rows>) prefetch_primary(rows, number);
    try {
      for (; number <= primary_count && batch.size() < kBatch; ++number) {
        batch.push_back({number, policy.search(number), 0});
      }
    } catch (...) {
      // The primary list ends here; what stands in front of its end has rows.
      failure = std::current_exception();
    }
    if constexpr (ShowsSides<Rows>) prefetch_partners(rows, batch);
    for (const auto& [primary, search, likely] : batch) {
      if (const std::int32_t partner = search.index ? policy.partner(search) : 0) {
        rows.pair(primary, partner);
        policy.remove(primary);
      } else {
        rows.deleted(primary);
      }
    }
  }
  if (failure) std::rethrow_exception(failure);
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

  Search search(std::int32_t primary) { return {&index_, primary_key_(primary)}; }
  std::int32_t partner(const Search& search) {
    leaving_ = index_.first_left(search.key);
    return from_ == PartnerFrom::kWholeList ? index_.first(search.key) : leaving_;
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
