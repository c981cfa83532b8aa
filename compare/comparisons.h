#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "compare/comparison_writer.h"
#include "reports/naming.h"
#include "services/host_services.h"
#include "vtrfile/document.h"

namespace trvtrout {

// One of the eight comparisons.
struct Comparison {
  std::u16string_view desc_name;  // what its report is named after
  void (*write)(ComparisonWriter& writer, const vtrfile::GroupSlots& primary, const vtrfile::GroupSlots& secondary);
  // Calls take(key) for the key of each record that the comparison walks, in bytes of the code page.
  void (*keys)(const vtrfile::GroupSlots& document, const std::function<void(std::string key)>& take);
};

extern const Comparison kProductComparison;
extern const Comparison kTreeComparison;
extern const Comparison kTableComparison;
extern const Comparison kFieldComparison;
extern const Comparison kLookupComparison;
extern const Comparison kControlTagComparison;
extern const Comparison kLanguageComparison;
extern const Comparison kDataSendComparison;

// The two documents of a comparison and the files that they are said to come from.
struct ComparedDocuments {
  const vtrfile::GroupSlots& primary;
  const vtrfile::GroupSlots& secondary;
  const std::u16string& primary_fname;
  const std::u16string& secondary_fname;
};

// Writes the report of `comparison` under the temporary name of the primary file; `file` gets its path as soon as it
// is settled, `counts` the rows as they are written. False when the user abandoned it: nothing was touched then.
// Raises whatever keeps the report from being written to its end; the rows before it stay in the file.
bool write_comparison(const HostServices& services, const Comparison& comparison, const ComparedDocuments& documents,
                      ReportFile& file, ComparisonCounts& counts);

// The keys that occur more than once in a document, each once, in the order in which they occur again.
std::vector<std::string> repeated_keys(const Comparison& comparison, const vtrfile::GroupSlots& document);

}  // namespace trvtrout
