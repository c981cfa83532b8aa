#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "differences/differences.h"
#include "exchange/texts.h"
#include "host/difference_counts.h"

namespace trvtrout::host {

// What the form of the differences says in front of them.
struct DifferencesHead {
  std::string old_file, new_file;
  DifferenceCounts counts;
};

// Calls its argument for each difference.
using DifferenceSource = std::function<void(const differences::Tell& tell)>;

// Writes the form "vtr-differences" (docs/json.md) as the differences come. Whether all could be written is the state
// of `out`.
void write_differences_json(std::ostream& out, exchange::Texts& texts, const DifferencesHead& head,
                            const DifferenceSource& of_header, const DifferenceSource& of_document);

}  // namespace trvtrout::host
