#pragma once

#include <string_view>

#include "exchange/json_writer.h"
#include "exchange/texts.h"
#include "vtrfile/document.h"

namespace trvtrout::exchange {

// A line of JSON for each item of each list (docs/json.md has the form); a slot that is as one that was never filled
// has none. `name`: the document's, in UTF-8.
void write_lines(JsonWriter& json, Texts& texts, std::string_view name, const vtrfile::DocumentSlots& document);

}  // namespace trvtrout::exchange
