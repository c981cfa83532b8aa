#include "tests/strikes.h"

#include <algorithm>
#include <functional>

namespace trvtrout::tests {
namespace {

constexpr std::size_t kSector = 512;

// `at`: below the size.
Struck strike_at(std::string& bytes, Strike how, std::size_t at, std::mt19937& random) {
  const auto below = [&](std::size_t limit) { return random() % limit; };
  const bool sector = how == Strike::kZeros || how == Strike::kNoise;
  const std::size_t size = std::min(sector ? kSector : 1 + below(kSector), bytes.size() - at);
  switch (how) {
    case Strike::kBit:
      bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
      return {at, at + 1, at, at + 1};
    case Strike::kByte:
      bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) + 1 + below(255));
      return {at, at + 1, at, at + 1};
    case Strike::kZeros:
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, '\0');
      return {at, at + size, at, at + size};
    case Strike::kNoise:
      std::generate_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size,
                      [&] { return static_cast<char>(below(256)); });
      return {at, at + size, at, at + size};
    case Strike::kLost:
      bytes.erase(at, size);
      return {at, at + size, at, at};
    case Strike::kDoubled:
      bytes.insert(at, bytes.substr(at, size));
      return {at, at + size, at, at + 2 * size};
    case Strike::kCut:
      bytes.resize(at);
      return {at, std::string::npos, at, at};
  }
  return {};
}

}  // namespace

std::vector<Struck> strike(std::string& bytes, Strike how, int times, std::mt19937& random) {
  std::vector<std::size_t> places;
  while (std::ssize(places) < times) places.push_back(random() % bytes.size());
  std::ranges::sort(places, std::greater{});
  std::vector<Struck> all;
  for (const std::size_t place : places) {
    const std::size_t before = bytes.size();
    const Struck struck = strike_at(bytes, how, place, random);
    // What stands behind has moved.
    for (Struck& behind : all) {
      behind.struck_begin += bytes.size() - before;
      behind.struck_end += bytes.size() - before;
    }
    all.push_back(struck);
  }
  return all;
}

}  // namespace trvtrout::tests
