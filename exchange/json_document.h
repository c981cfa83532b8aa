#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "exchange/document_builder.h"
#include "exchange/json_tokens.h"
#include "exchange/json_writer.h"
#include "exchange/texts.h"
#include "vtrfile/document.h"

namespace trvtrout::exchange {

// A document as JSON: its header and all sections with every slot (docs/json.md), and a line end.
void write_document(JsonWriter& json, Texts& texts, const vtrfile::DocumentSlots& document);

// Where a document's JSON isn't as it must be, for people.
class ImportError : public std::runtime_error {
 public:
  ImportError(const std::string& place, std::uint64_t line, const std::string& what)
      : std::runtime_error("line " + std::to_string(line) + ", " + place + ": " + what) {}
};

// The bytes of a file, piece by piece: its header, then the tag and the record of each section, then the end tag.
using FilePieces = std::vector<std::string>;

// The file that a document's JSON describes. Every member must be there once, of its type and in its range, and no
// other may. Raises ImportError, and what `source` raises. Takes time and memory linear in the JSON's size.
FilePieces read_document(JsonSource source, TextsOf texts_of);

}  // namespace trvtrout::exchange
