#pragma once

#include <string>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"

namespace trvtrout::host {

// The parts that were asked for, by their names.
struct PartSelection {
  std::vector<std::string> compared, left_out;
};

// Of a file in the old format only the header and the schema reach a comparison. The other parts would come out as if
// the file had none of their records, so they aren't compared at all.
class OldFormat {
 public:
  // `file` is the one that `utility` has read last.
  void look_at(const std::string& file, const TarvelVtrOut_InOut& utility);
  // Which of the parts named (all when empty) can be compared between the files looked at; none of them when
  // `all_or_none` and one can't. Tells the user of those that can't, in one line.
  PartSelection select(const std::vector<std::string>& names, bool all_or_none) const;

 private:
  std::vector<std::string> files_;
};

}  // namespace trvtrout::host
