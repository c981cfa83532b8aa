#pragma once

#include <nlohmann/json.hpp>

#include "vtrfile/document.h"

// Documents and their differences in the forms for programs.
namespace trvtrout::tests {

using Json = nlohmann::ordered_json;

Json json_of(const vtrfile::DocumentSlots& document);
// The form "vtr-differences".
Json differences_between(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document);
// What the changes make of the old document, step by step as docs/json.md tells it.
Json applied(Json document, const Json& differences);
// The elements of a list, which may say its lower bound beside them.
Json& elements_of(Json& list);

}  // namespace trvtrout::tests
