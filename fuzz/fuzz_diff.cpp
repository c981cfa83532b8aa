#include "differences/differences.h"
#include "fuzz/documents.h"
#include "tests/differences_json.h"

// Any two documents, the second one behind the mark; without a mark a document beside itself. Applied to the first one
// the differences give the second.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trvtrout;
  const auto [first, second] = fuzz::two_documents(data, size);
  fakes::Machine machine;
  machine.memory.files = {{u"a.vtr", first}, {u"b.vtr", second}};
  TarvelVtrOut_InOut one(machine.services()), other(machine.services());
  const bool whole = bool(fuzz::read(one, u"a.vtr")) && bool(fuzz::read(other, u"b.vtr"));
  std::size_t told = 0;
  differences::find_differences(one.CurrentSlots(), other.CurrentSlots(),
                                [&](const differences::Difference&) { ++told; });
  // Of a file that was cut the slots that it only announced are there, empty: as JSON they take too long.
  if (!whole) return 0;
  fuzz::require((told == 0) == (fuzz::records_of(one.CurrentSlots()) == fuzz::records_of(other.CurrentSlots())));
  const auto changes = tests::differences_between(one.CurrentSlots(), other.CurrentSlots());
  fuzz::require(changes["changes"].size() == told);
  const auto after = tests::applied(tests::json_of(one.CurrentSlots()), changes);
  fuzz::require(after["sections"] == tests::json_of(other.CurrentSlots())["sections"]);
  return 0;
}
