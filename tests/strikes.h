#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support.h"
#include "vtrfile/salvage.h"

// What damage does to a document, and what of its items survives.
namespace trvtrout::tests {

enum class Strike { kBit, kByte, kZeros, kNoise, kLost, kDoubled, kCut };
inline constexpr std::array kStrikes = {Strike::kBit,  Strike::kByte,    Strike::kZeros, Strike::kNoise,
                                        Strike::kLost, Strike::kDoubled, Strike::kCut};
inline constexpr std::array kStrikeNames = {"flipped bit", "wrong byte",    "512 zeros", "512 random",
                                            "bytes lost",  "bytes doubled", "cut"};

// Which bytes of the whole document are concerned, and where the damage
// stands in the struck one.
struct Struck {
  std::size_t begin, end;
  std::size_t struck_begin, struck_end;
};
// Damages `bytes` at random places.
std::vector<Struck> strike(std::string& bytes, Strike how, int times, std::mt19937& random);

// The used items of all lists of a document by what they hold themselves, without the lists within them: the list's path
// and the bytes. Where each of them stands in the file.
struct Place {
  std::size_t begin, end;
};
using Items = std::map<std::string, std::vector<Place>>;

// The items of a file; nothing when it doesn't read to its end.
std::optional<Items> items_of(std::string_view bytes);
// Those of a file that was salvaged which aren't among the `whole` one's, nor what is left of one that was struck. For
// people.
std::vector<std::string> invented(const vtrfile::Salvaged& salvaged, const Items& whole,
                                  const std::vector<Struck>& struck);
// Those of both.
std::int64_t common(const Items& one, const Items& other);
std::int64_t size_of(const Items& items);

}  // namespace trvtrout::tests
