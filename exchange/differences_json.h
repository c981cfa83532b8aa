#pragma once

#include <functional>
#include <string>

#include "differences/difference_counts.h"
#include "exchange/json_writer.h"
#include "exchange/texts.h"

namespace trvtrout::exchange {

// What the form of the differences says in front of them.
struct DifferencesHead {
  std::string old_file, new_file;
  differences::DifferenceCounts counts;
};

// Calls its argument for each difference.
using DifferenceSource = std::function<void(const differences::Tell& tell)>;

// Writes the form "vtr-differences" (docs/json.md), and a line end, as the differences come.
void write_differences(JsonWriter& json, Texts& texts, const DifferencesHead& head, const DifferenceSource& of_header,
                       const DifferenceSource& of_document);

}  // namespace trvtrout::exchange
