#include <cstddef>
#include <cstdint>

#include "component/parts.h"
#include "fuzz/documents.h"

// Any bytes as a document: read, and every report written. Nothing may break, and the reports come out whole or say
// that they didn't.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trvtrout;
  fakes::Machine machine;
  std::u16string path = u"a.vtr", report;
  machine.memory.files[path].assign(data, data + size);
  TarvelVtrOut_InOut utility(machine.services());
  fuzz::read(utility, path);
  Boolean no = False;
  for (const auto& operations : document_parts()) {
    const Boolean written = (utility.*operations.report)(path, report, no);
    fuzz::require(!written || machine.memory.files[report].starts_with("Detailed"));
  }
  fuzz::require_all_closed(machine);
  return 0;
}
