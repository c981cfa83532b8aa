#include <cstddef>
#include <cstdint>

#include "fuzz/documents.h"
#include "fuzz/exchanged.h"
#include "vtrfile/own_record.h"
#include "vtrfile/reader.h"
#include "vtrfile/upgrade.h"

namespace {

using namespace trvtrout;
using namespace trvtrout::vtrfile;

// Reads the bytes; false when they aren't a whole document. What was read is in `document` in any case.
bool read(std::string_view bytes, DocumentSlots& document) {
  GroupSlots group;
  Slot<SCHEMA_STRUCT_OLD1> schema_old;
  try {
    return DocumentReader(document, group, schema_old)
        .read(image_of({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}));
  } catch (const ReadError&) {
    return false;
  }
}

// A file with these records, nothing tested and nothing emptied.
std::string file_of(const DocumentSlots& document) {
  std::string bytes;
  RecordWriter writer(bytes);
  const OwnText version(kCurrentFormatVersion.text());
  HEADER_STRUCT header = *document.Header;
  header.Version = version.text();
  writer.write(header);
  const auto write_tag = [&](std::string_view name) {
    const OwnText text(name);
    SECTION_TAG_STRUCT tag{};
    tag.Tag = text.text();
    tag.Count = 1;
    writer.write(tag);
  };
  for_each_section([&](const auto& section) {
    write_tag(section.tag);
    writer.write(*(document.*section.kSlot));
  });
  write_tag(kEndTag);
  return bytes;
}

}  // namespace

// Any bytes as a document: what was read of it, written and read again, is the same, record by record and byte by byte;
// and so is what comes back from its JSON.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  DocumentSlots document, again;
  read({reinterpret_cast<const char*>(data), size}, document);
  const std::string bytes = file_of(document);
  fuzz::require(read(bytes, again));
  fuzz::require(fuzz::records_of(again) == fuzz::records_of(document));
  fuzz::require(file_of(again) == bytes);
  fuzz::require(fuzz::imported(fuzz::json_of(again)) == bytes);
  return 0;
}
