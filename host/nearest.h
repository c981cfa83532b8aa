#pragma once

#include <string>
#include <vector>

namespace trvtrout::host {

// The one of `names` that `typed` was most likely meant to be: one that begins with it, or else the one that the fewest
// slips of a finger lead to (a letter too many, too few, another one, two that changed places). Empty when none is
// near.
std::string nearest(const std::string& typed, const std::vector<std::string>& names);

// "; did you mean NAME?" with the nearest one, or nothing.
std::string did_you_mean(const std::string& typed, const std::vector<std::string>& names);

}  // namespace trvtrout::host
