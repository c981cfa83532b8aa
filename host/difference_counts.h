#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "differences/differences.h"
#include "vtrfile/document.h"

namespace trvtrout::host {

// How many differences of each kind there are.
struct DifferenceCounts {
  std::array<std::size_t, differences::kKinds> of_kind = {};
  std::size_t bookkeeping = 0;  // of them

  void add(const differences::Difference& difference);
  std::size_t all() const;
  // "3 differences: 2 changed, 1 added; 1 of them only bookkeeping"
  std::string text() const;
};

struct CountsBesideComparisons {
  DifferenceCounts all;
  DifferenceCounts beside;  // those that none of the eight comparisons looks at
};

// A removed and an added item count as looked at, although the comparison may find that they are one and the same to
// it.
CountsBesideComparisons differences_beside_comparisons(const vtrfile::DocumentSlots& old_document,
                                                       const vtrfile::DocumentSlots& new_document);

}  // namespace trvtrout::host
