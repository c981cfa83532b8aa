#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "differences/differences.h"

namespace trvtrout::differences {

// Chooses differences by their paths. In a pattern "*" stands for any characters of a step, "?" for one, "**" for any
// steps; it matches a value with all that is in it.
class PathFilter {
 public:
  // All when `only` is empty, but for those that `ignore` names. Raises UnknownPath for a pattern that no document has
  // a path for.
  PathFilter(const std::vector<std::string>& only, const std::vector<std::string>& ignore);

  // An item that was removed, added or moved is chosen, too, when it contains what `only` names.
  bool chooses(const Difference& difference) const;

 private:
  using Pattern = std::vector<std::string>;
  std::vector<Pattern> only_, ignore_;
};

// What is wrong with a pattern, for people.
class UnknownPath : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The patterns of the parts of which there are comparisons; raises std::out_of_range for a name of none.
std::vector<std::string> patterns_of_part(const std::string& part);

}  // namespace trvtrout::differences
