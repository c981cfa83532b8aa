#include "compare/match.h"

namespace trvtrout {

std::size_t MatchIndex::Hash::operator()(const MatchKey& key) const noexcept {
  constexpr std::size_t kOdd = 0x9E3779B97F4A7C15;
  std::size_t hash = std::hash<std::string_view>()(key.text);
  for (const std::size_t part : {std::hash<std::string_view>()(key.second_text), static_cast<std::size_t>(key.number),
                                 static_cast<std::size_t>(key.second_number)}) {
    hash = (hash ^ part) * kOdd;
  }
  return hash ^ (hash >> 32);
}

MatchIndex::MatchIndex(const WorkingList& list, const KeyOf& key_of)
    : list_(list), next_(static_cast<std::size_t>(list.count()), 0) {
  chains_.reserve(next_.size());
  for (std::int32_t number = list.count(); number >= 1; --number) {
    Chain& chain = chains_[key_of(number)];
    next_[static_cast<std::size_t>(number - 1)] = chain.first;
    chain = {number, number};
  }
}

std::int32_t MatchIndex::first_left(const MatchKey& key) {
  const auto found = chains_.find(key);
  if (found == chains_.end()) return 0;
  std::int32_t& left = found->second.left;
  while (left != 0 && list_.removed(left)) left = next_[static_cast<std::size_t>(left - 1)];
  return left;
}

std::int32_t MatchIndex::first(const MatchKey& key) const {
  const auto found = chains_.find(key);
  return found == chains_.end() ? 0 : found->second.first;
}

}  // namespace trvtrout
