#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

// What damage does to a file.
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

}  // namespace trvtrout::tests
