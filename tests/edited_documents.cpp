#include "tests/edited_documents.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>

#include "exchange/json_document.h"
#include "host/exchanged_texts.h"
#include "tests/support.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/reader.h"

namespace trvtrout::tests {
namespace {

using vtrfile::Kind;
using vtrfile::ValueType;

void collect(Json& json, const ValueType& type, const std::string& path, std::vector<Leaf>* leaves,
             std::vector<List>* lists) {
  const auto collect_elements = [&](Json& elements) {
    for (std::size_t place = 0; place < elements.size(); ++place) {
      collect(elements[place], *type.element, path + '[' + std::to_string(place + 1) + ']', leaves, lists);
    }
  };
  if (type.kind == Kind::kRecord) {
    for (const vtrfile::MemberType& member : type.members) {
      collect(json[member.name], *member.type, path + '/' + member.name, leaves, lists);
    }
  } else if (type.kind == Kind::kArray && !json.is_null()) {
    if (lists) lists->push_back({&elements_of(json), type.element});
    collect_elements(elements_of(json));
  } else if (type.kind == Kind::kRun || (type.kind == Kind::kVariantRun && !json.is_null())) {
    collect_elements(json);
  } else if (leaves && type.kind != Kind::kArray) {
    leaves->push_back({&json, &type, path});
  }
}

void collect(Json& document, std::vector<Leaf>* leaves, std::vector<List>* lists) {
  const vtrfile::DocumentSlots empty;
  for (const auto& [tag, record] : sections_of(empty)) {
    collect(document["sections"][std::string(tag)], record.type(), std::string(tag), leaves, lists);
  }
}

std::string word(std::mt19937& random) { return "word " + std::to_string(random() % 1'000'000); }

Json other_value(const ValueType& type, std::mt19937& random) {
  const auto number = static_cast<int>(random() % 20'000) + 1;
  std::string digits;
  for (std::size_t nth = 0; nth < std::max<std::size_t>(type.count, 1); ++nth)
    digits += random() % 2 == 0 ? "a1" : "7c";
  switch (type.kind) {
    case Kind::kInt16:
    case Kind::kInt32:
      return number;
    case Kind::kFloat:
      return number / 4.0;
    case Kind::kFlag:
      return random() % 2 == 0;
    case Kind::kText:
      return word(random);
    case Kind::kRaw:
    case Kind::kBytes:
      return digits;
    case Kind::kVariant:
      return random() % 2 == 0 ? Json{{"type", 8}, {"value", word(random)}} : Json{{"type", 3}, {"value", number}};
    default: {  // a run of variants that are all Empty
      Json slots(type.count, nullptr);
      slots[random() % type.count] = {{"type", 8}, {"value", word(random)}};
      return slots;
    }
  }
}

}  // namespace

vtrfile::DocumentSlots document_of(const Json& json) {
  std::string bytes;
  std::istringstream text(json.dump());
  for (const std::string& piece : exchange::read_document(
           [&](std::span<char> into) {
             text.read(into.data(), static_cast<std::streamsize>(into.size()));
             return static_cast<std::size_t>(text.gcount());
           },
           [](int code_page) { return host::texts_of(code_page); })) {
    bytes += piece;
  }
  vtrfile::DocumentSlots document;
  vtrfile::GroupSlots group;
  vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> schema_old;
  EXPECT_TRUE(vtrfile::DocumentReader(document, group, schema_old).read(image_of(bytes)));
  return document;
}

std::vector<Leaf> leaves_of(Json& document) {
  std::vector<Leaf> leaves;
  collect(document, &leaves, nullptr);
  return leaves;
}

std::vector<List> lists_of(Json& document) {
  std::vector<List> lists;
  collect(document, nullptr, &lists);
  return lists;
}

void change(const Leaf& leaf, std::mt19937& random) {
  const Json before = *leaf.value;
  while (*leaf.value == before) *leaf.value = other_value(*leaf.type, random);
}

void edit(Json& document, std::mt19937& random) {
  const auto below = [&](std::size_t limit) { return static_cast<std::ptrdiff_t>(random() % limit); };
  auto lists = lists_of(document);
  std::erase_if(lists, [](const List& list) { return list.items->empty(); });
  const unsigned kind = random() % 4;
  if (kind == 0 || lists.empty()) {
    auto leaves = leaves_of(document);
    return change(leaves[static_cast<std::size_t>(below(leaves.size()))], random);
  }
  const List list = lists[static_cast<std::size_t>(below(lists.size()))];
  const auto begin = list.items->begin();
  const auto some = below(list.items->size());
  const Json item = begin[some];
  if (kind == 1) {
    list.items->erase(begin + some);
  } else if (kind == 2) {
    Json added = item;
    if (const auto* key = vtrfile::key_member(*list.element)) {
      change({&added[key->name], key->type, {}}, random);
    }
    list.items->insert(begin + some, added);
  } else {
    list.items->erase(begin + some);
    list.items->insert(list.items->begin() + below(list.items->size() + 1), item);
  }
}

}  // namespace trvtrout::tests
