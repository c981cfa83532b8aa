#pragma once

#include <random>
#include <string>
#include <vector>

#include "tests/differences_json.h"
#include "vtrfile/document.h"
#include "vtrfile/value_types.h"

// Documents as JSON that can be edited value by value, and the way back to records.
namespace trvtrout::tests {

// The way back from json_of.
vtrfile::DocumentSlots document_of(const Json& json);

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
