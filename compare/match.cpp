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

SoughtKey::SoughtKey(const MatchKey& key) : MatchKey(key), hash(hash_of(key)) {}

MatchIndex::MatchIndex(const WorkingList& list, KeyOf key_of)
    : list_(list),
      key_of_(std::move(key_of)),
      chains_(std::bit_ceil(2 * static_cast<std::size_t>(list.count()) + 1)),
      next_(static_cast<std::size_t>(list.count()), 0) {
  for (std::int32_t number = list.count(); number >= 1; --number) {
    const SoughtKey key = key_of_(number);
    Chain& chain = chains_[place_of(key)];
    next_[static_cast<std::size_t>(number - 1)] = chain.first;
    chain = {key.hash, number, number};
  }
}

template <class IsKey>
std::size_t MatchIndex::place_of(std::uint32_t hash, IsKey is_key) const {
  for (std::size_t place = hash;; ++place) {
    const Chain& chain = chains_[place &= chains_.size() - 1];
    if (chain.first == 0 || (chain.hash == hash && is_key(chain.first))) return place;
  }
}

std::size_t MatchIndex::place_of(const SoughtKey& key) const {
  return place_of(key.hash, [&](std::int32_t number) { return key_of_(number) == key; });
}

std::int32_t MatchIndex::first_left(const SoughtKey& key) {
  std::int32_t& left = chains_[place_of(key)].left;
  while (left != 0 && list_.removed(left)) left = next_[static_cast<std::size_t>(left - 1)];
  return left;
}

void MatchIndex::prefetch(const SoughtKey& key) const { __builtin_prefetch(&chains_[key.hash & (chains_.size() - 1)]); }

std::int32_t MatchIndex::guess(const SoughtKey& key) const {
  return chains_[place_of(key.hash, [](std::int32_t) { return true; })].left;
}

std::int32_t MatchIndex::first(const SoughtKey& key) const { return chains_[place_of(key)].first; }

}  // namespace trvtrout
