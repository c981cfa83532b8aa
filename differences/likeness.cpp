#include "differences/likeness.h"

namespace trvtrout::differences {
namespace {

using namespace vtrfile;

// How many values that at least one of two items holds are the same in both. A list within them is one value.
struct Tally {
  std::size_t same = 0, different = 0;

  void count(Value one, Value other) {
    if (one.kind() == Kind::kRecord) {
      for (const MemberType& member : one.type().members) count(one.member(member), other.member(member));
    } else if (one.kind() == Kind::kRun) {
      for (std::uint32_t place = 0; place < one.elements(); ++place) count(one.element(place), other.element(place));
    } else if (!equal(one, other)) {
      ++different;
    } else if (!is_empty(one)) {
      ++same;
    }
  }
};

}  // namespace

std::optional<std::size_t> changes_between(Value one, Value other) {
  Tally tally;
  tally.count(one, other);
  const bool alike = tally.different <= 1 || tally.same >= 2 * tally.different;
  return alike ? std::optional(tally.different) : std::nullopt;
}

}  // namespace trvtrout::differences
