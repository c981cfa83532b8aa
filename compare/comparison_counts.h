#pragma once

#include <cstddef>

namespace trvtrout {

// How many item rows of a comparison have which form; a changed pair counts once.
struct ComparisonCounts {
  std::size_t unchanged = 0, changed = 0, deleted = 0, added = 0;
};

}  // namespace trvtrout
