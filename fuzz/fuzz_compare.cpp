#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "component/parts.h"
#include "fuzz/documents.h"

// Any two documents, the second one behind the mark; without a mark a document beside itself. All comparisons are
// written, and each accounts for every row that it prints.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trvtrout;
  const auto [first, second] = fuzz::two_documents(data, size);
  fakes::Machine machine;
  std::u16string primary = u"a.vtr", secondary = u"b.vtr", report;
  machine.memory.files = {{primary, first}, {secondary, second}};
  TarvelVtrOut_InOut utility(machine.services());
  fuzz::read(utility, primary, False);
  fuzz::read(utility, secondary, True);
  for (const auto& operations : document_parts()) {
    if (!(utility.*operations.compare)(primary, secondary, report)) continue;
    const std::string& text = machine.memory.files[report];
    fuzz::require(text.starts_with(",Compared"));
    const ComparisonCounts& counts = utility.LastCounts();
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n'));
    fuzz::require(counts.unchanged + counts.changed + counts.deleted + counts.added <= lines);
    utility.RepeatedKeys(false);
    utility.RepeatedKeys(true);
  }
  fuzz::require(machine.memory.files[primary] == first && machine.memory.files[secondary] == second);
  fuzz::require_all_closed(machine);
  return 0;
}
