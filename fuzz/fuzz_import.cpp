#include <cstddef>
#include <cstdint>

#include "fuzz/documents.h"
#include "fuzz/exchanged.h"
#include "vtrfile/reader.h"

namespace {

using namespace trvtrout;
using namespace trvtrout::vtrfile;

DocumentSlots read(std::string_view bytes) {
  DocumentSlots document;
  GroupSlots group;
  Slot<SCHEMA_STRUCT_OLD1> schema_old;
  fuzz::require(DocumentReader(document, group, schema_old)
                    .read(image_of({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()})));
  return document;
}

}  // namespace

// Any bytes as a document's JSON: they're refused, or what they describe is a whole file, which comes back from its own
// JSON byte for byte. fuzz_round_trip does the latter with any document.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = fuzz::imported({reinterpret_cast<const char*>(data), size});
  if (bytes) fuzz::require(fuzz::imported(fuzz::json_of(read(*bytes))) == bytes);
  return 0;
}
