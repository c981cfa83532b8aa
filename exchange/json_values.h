#pragma once

#include "exchange/json_writer.h"
#include "exchange/texts.h"
#include "vtrfile/value_types.h"

namespace trvtrout::exchange {

// The one value as programs are told it (docs/json.md has the form), at the place where the writer stands.
void write_value(JsonWriter& json, Texts& texts, vtrfile::Value value);
void write_value(JsonWriter& json, Texts& texts, vtrfile::Var variant);

}  // namespace trvtrout::exchange
