#include "differences/difference_counts.h"

#include <numeric>

namespace trvtrout::differences {

void DifferenceCounts::add(const Difference& difference) {
  ++of_kind[static_cast<std::size_t>(difference.kind)];
  if (difference.is_bookkeeping()) ++bookkeeping;
}

std::size_t DifferenceCounts::all() const { return std::reduce(of_kind.begin(), of_kind.end()); }

std::string DifferenceCounts::text() const {
  const std::size_t count = all();
  std::string text = std::to_string(count) + (count == 1 ? " difference" : " differences");
  const char* between = ": ";
  for (std::size_t kind = 0; kind < of_kind.size(); ++kind) {
    if (of_kind[kind] == 0) continue;
    text += between + std::to_string(of_kind[kind]) + ' ' + kKindNames[kind];
    between = ", ";
  }
  if (bookkeeping > 0) text += "; " + std::to_string(bookkeeping) + " of them only bookkeeping";
  return text;
}

}  // namespace trvtrout::differences
