#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace trvtrout::differences {

using PlacePair = std::pair<std::uint32_t, std::uint32_t>;

// A longest common subsequence, as the places of its members in both, from the last to the first; nothing when the
// sequences differ so much that finding it takes more than a number of steps in proportion to their length.
std::optional<std::vector<PlacePair>> longest_common(const std::vector<std::uint32_t>& one,
                                                     const std::vector<std::uint32_t>& other);

}  // namespace trvtrout::differences
