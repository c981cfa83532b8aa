#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "tests/fakes/fake_services.h"
#include "tests/operations.h"

// Any bytes as a document: read, every accessor asked, every report written. Nothing may break, and the reports come
// out whole or say that they didn't.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trvtrout;
  fakes::Machine machine;
  std::u16string path = u"a.vtr", list, report;
  machine.memory.files[path].assign(data, data + size);
  TarvelVtrOut_InOut utility(machine.services());
  Boolean no = False;
  utility.ReadVTR(path, list, no);
  for (const auto& operations : tests::kOperations) {
    if ((utility.*operations.report)(path, report, no) && !machine.memory.files[report].starts_with("Detailed"))
      std::abort();
  }
  if (machine.files.open_objects() != 0 || machine.memory.open_objects() != 0) std::abort();
  return 0;
}
