#pragma once

#include "differences/difference_counts.h"
#include "vtrfile/document.h"

namespace trvtrout::host {

using differences::DifferenceCounts;

struct CountsBesideComparisons {
  DifferenceCounts all;
  DifferenceCounts beside;  // those that none of the eight comparisons looks at
};

// A removed and an added item count as looked at, although the comparison may find that they are one and the same to
// it.
CountsBesideComparisons differences_beside_comparisons(const vtrfile::DocumentSlots& old_document,
                                                       const vtrfile::DocumentSlots& new_document);

}  // namespace trvtrout::host
