#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "differences/differences.h"

namespace trvtrout::differences {

// How many differences of each kind there are.
struct DifferenceCounts {
  std::array<std::size_t, kKinds> of_kind = {};
  std::size_t bookkeeping = 0;  // of them

  void add(const Difference& difference);
  std::size_t all() const;
  // "3 differences: 2 changed, 1 added; 1 of them only bookkeeping"
  std::string text() const;
};

}  // namespace trvtrout::differences
