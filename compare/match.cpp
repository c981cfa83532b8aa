#include "compare/match.h"

#include <bit>

namespace trvtrout {
namespace {

std::uint32_t hash_of(const MatchKey& key) {
  constexpr std::size_t kOdd = 0x9E3779B97F4A7C15;
  std::size_t hash = std::hash<std::string_view>()(key.text);
  for (const std::size_t part : {key.second_text.empty() ? 0 : std::hash<std::string_view>()(key.second_text),
                                 static_cast<std::size_t>(key.number), static_cast<std::size_t>(key.second_number)}) {
    hash = (hash ^ part) * kOdd;
  }
  return static_cast<std::uint32_t>(hash >> 32);
}

}  // namespace

MatchIndex::MatchIndex(const WorkingList& list, KeyOf key_of)
    : list_(list),
      key_of_(std::move(key_of)),
      chains_(std::bit_ceil(2 * static_cast<std::size_t>(list.count()) + 1)),
      next_(static_cast<std::size_t>(list.count()), 0) {
  for (std::int32_t number = list.count(); number >= 1; --number) {
    const MatchKey key = key_of_(number);
    const std::uint32_t hash = hash_of(key);
    Chain& chain = chains_[place_of(key, hash)];
    next_[static_cast<std::size_t>(number - 1)] = chain.first;
    chain = {hash, number, number};
  }
}

std::size_t MatchIndex::place_of(const MatchKey& key, std::uint32_t hash) const {
  for (std::size_t place = hash;; ++place) {
    const Chain& chain = chains_[place &= chains_.size() - 1];
    if (chain.first == 0 || (chain.hash == hash && key_of_(chain.first) == key)) return place;
  }
}

std::int32_t MatchIndex::first_left(const MatchKey& key) {
  std::int32_t& left = chains_[place_of(key, hash_of(key))].left;
  while (left != 0 && list_.removed(left)) left = next_[static_cast<std::size_t>(left - 1)];
  return left;
}

void MatchIndex::expect(const MatchKey& key) const {
  __builtin_prefetch(&chains_[hash_of(key) & (chains_.size() - 1)]);
}

std::int32_t MatchIndex::guess(const MatchKey& key) const {
  const std::uint32_t hash = hash_of(key);
  const Chain& chain = chains_[hash & (chains_.size() - 1)];
  return chain.hash == hash ? chain.left : 0;
}

std::int32_t MatchIndex::first(const MatchKey& key) const { return chains_[place_of(key, hash_of(key))].first; }

}  // namespace trvtrout
