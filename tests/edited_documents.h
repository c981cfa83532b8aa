#pragma once

#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "vtrfile/document.h"
#include "vtrfile/value_types.h"

// Documents as JSON that can be edited value by value, and the way back to records.
namespace trvtrout::tests {

using Json = nlohmann::ordered_json;

Json json_of(const vtrfile::DocumentSlots& document);
vtrfile::DocumentSlots document_of(const Json& json);
// The form "vtr-differences".
Json differences_between(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document);
// What the changes make of the old document, step by step as docs/json.md tells it.
Json applied(Json document, const Json& differences);

// A value of a document that can be given another one.
struct Leaf {
  Json* value;
  const vtrfile::ValueType* type;
  std::string path;
};
// A list of a document; `items` is the JSON array.
struct List {
  Json* items;
  const vtrfile::ValueType* element;
};
// All of them; they hold as long as the document isn't edited.
std::vector<Leaf> leaves_of(Json& document);
std::vector<List> lists_of(Json& document);

// Gives the value another one of its type.
void change(const Leaf& leaf, std::mt19937& random);
// Makes one edit somewhere: a value changed, or an item removed, added or moved.
void edit(Json& document, std::mt19937& random);

}  // namespace trvtrout::tests
