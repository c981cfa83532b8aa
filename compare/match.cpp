#include "compare/match.h"

#include <bit>
#include <cstring>
#include <random>

namespace trvtrout {
namespace {

constexpr int kPrimeBits = 61;
constexpr std::uint64_t kPrime = (std::uint64_t{1} << kPrimeBits) - 1;

// Drawn for each process, when the first key needs it.
std::uint64_t drawn_place() {
  static const std::uint64_t kPlace = [] {
    std::random_device random;
    return std::uniform_int_distribution<std::uint64_t>(1, kPrime / 2)(random);
  }();
  return kPlace;
}

// A polynomial at a drawn place, modulo a prime, over the parts of which a key consists. Any two keys collide at few of
// the places, so nobody can prepare a file whose keys do, which would make a search as long as the list.
class KeyHash {
 public:
  void add(std::uint64_t part) {  // below the prime
    const Wide sum = Wide{sum_} * place_ + part;
    // Twice the prime at most, and so it stays.
    sum_ = static_cast<std::uint64_t>(sum & kPrime) + static_cast<std::uint64_t>(sum >> kPrimeBits);
  }
  void add(std::string_view text) {
    constexpr std::size_t kPartBytes = 7;
    constexpr std::uint64_t kPart = (std::uint64_t{1} << 8 * kPartBytes) - 1;
    for (; text.size() > kPartBytes; text.remove_prefix(kPartBytes)) {
      std::uint64_t part;
      std::memcpy(&part, text.data(), sizeof part);
      add(part & kPart);
    }
    if (text.empty()) return;
    std::uint64_t rest = 0;
    for (const char c : text) rest = rest << 8 | static_cast<unsigned char>(c);
    add(rest);
  }
  std::uint32_t value() const {
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;  // spreads neighbours
    return static_cast<std::uint32_t>(sum_ * kOdd >> 32);
  }

 private:
  __extension__ using Wide = unsigned __int128;

  const std::uint64_t place_ = drawn_place();
  std::uint64_t sum_ = 1;
};

std::uint32_t hash_of(const MatchKey& key) {
  const auto beside = [](std::int32_t number, std::string_view text) {
    return std::uint64_t{text.size()} << 32 | static_cast<std::uint32_t>(number);
  };
  KeyHash hash;
  hash.add(beside(key.number, key.text));
  hash.add(key.text);
  if (const std::uint64_t second = beside(key.second_number, key.second_text)) {
    hash.add(second);
    hash.add(key.second_text);
  }
  return hash.value();
}

}  // namespace

SoughtKey::SoughtKey(const MatchKey& key) : MatchKey(key), hash(hash_of(key)) {}

MatchIndex::MatchIndex(const WorkingList& list, KeyOf key_of)
    : list_(list),
      key_of_(std::move(key_of)),
      chains_(std::bit_ceil(2 * static_cast<std::size_t>(list.count()) + 2)),
      unused_bits_(std::countl_zero(static_cast<std::uint32_t>(chains_.size() - 1))),
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
  for (std::size_t place = hash >> unused_bits_;; ++place) {
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

std::int32_t MatchIndex::guess(const SoughtKey& key) const {
  return chains_[place_of(key.hash, [](std::int32_t) { return true; })].left;
}

std::int32_t MatchIndex::first(const SoughtKey& key) const { return chains_[place_of(key)].first; }

}  // namespace trvtrout
