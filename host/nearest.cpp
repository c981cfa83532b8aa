#include "host/nearest.h"

#include <algorithm>
#include <cstddef>

namespace trvtrout::host {
namespace {

std::size_t slips_between(const std::string& one, const std::string& other) {
  std::vector<std::vector<std::size_t>> slips(one.size() + 1, std::vector<std::size_t>(other.size() + 1));
  for (std::size_t i = 0; i <= one.size(); ++i) {
    for (std::size_t j = 0; j <= other.size(); ++j) {
      if (i == 0 || j == 0) {
        slips[i][j] = i + j;
        continue;
      }
      const std::size_t differs = one[i - 1] == other[j - 1] ? 0 : 1;
      slips[i][j] = std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, slips[i - 1][j - 1] + differs});
      const bool swapped = i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1];
      if (swapped) slips[i][j] = std::min(slips[i][j], slips[i - 2][j - 2] + 1);
    }
  }
  return slips[one.size()][other.size()];
}

}  // namespace

std::string nearest(const std::string& typed, const std::vector<std::string>& names) {
  constexpr std::size_t kLongestName = 40;  // the time that it takes grows with the length of what was typed
  if (typed.empty() || typed.size() > kLongestName) return {};
  std::string best;
  std::size_t fewest = typed.size() / 3 + 1;  // more than that, and it's another word
  for (const std::string& name : names) {
    if (name.starts_with(typed)) return name;
    const std::size_t slips = slips_between(typed, name);
    if (slips >= fewest) continue;
    fewest = slips;
    best = name;
  }
  return best;
}

std::string did_you_mean(const std::string& typed, const std::vector<std::string>& names) {
  const std::string name = nearest(typed, names);
  return name.empty() ? "" : "; did you mean " + name + "?";
}

}  // namespace trvtrout::host
