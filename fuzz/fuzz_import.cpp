#include <cstddef>
#include <cstdint>
#include <map>

#include "exchange/json_document.h"
#include "fuzz/documents.h"
#include "host/exchanged_texts.h"
#include "vtrfile/reader.h"

namespace {

using namespace trvtrout;
using namespace trvtrout::vtrfile;

// Making a code page asks the machine for each of its characters, so each is made once.
exchange::Texts texts_of(int code_page) {
  static std::map<int, std::shared_ptr<const platform::CodePage>> pages;
  auto& page = pages[code_page];
  if (!page) page = std::make_shared<const platform::CodePage>(code_page);
  return {code_page, [page](std::string_view bytes) { return page->decode(bytes); },
          [page](const std::u16string& text) { return page->encode(text); }};
}

// The bytes of the file that the JSON describes; nothing when it's refused.
std::optional<std::string> import(std::string_view json) {
  const auto source = [&](std::span<char> into) {
    const std::size_t count = json.copy(into.data(), into.size());
    json.remove_prefix(count);
    return count;
  };
  try {
    std::string bytes;
    for (const std::string& piece : exchange::read_document(source, texts_of)) bytes += piece;
    return bytes;
  } catch (const exchange::ImportError&) {
    return {};
  }
}

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
// JSON byte for byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = import({reinterpret_cast<const char*>(data), size});
  if (!bytes) return 0;
  std::string json;
  exchange::JsonWriter writer([&](std::string_view piece) { json += piece; });
  exchange::Texts texts = texts_of(1252);
  write_document(writer, texts, read(*bytes));
  writer.flush();
  fuzz::require(import(json) == bytes);
  return 0;
}
