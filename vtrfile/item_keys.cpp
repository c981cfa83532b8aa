#include "vtrfile/item_keys.h"

#include <algorithm>
#include <array>

namespace trvtrout::vtrfile {
namespace {

// The names that keys have in the records of lists. A record with several of them is known by the first.
constexpr std::array<std::string_view, 8> kKeyNames = {"CodePath",   "Tid",  "Fid",      "Id",
                                                       "ControlTag", "Code", "FileName", "Key"};

}  // namespace

const MemberType* key_member(const ValueType& item_type) {
  for (const std::string_view name : kKeyNames) {
    const auto found = std::ranges::find(item_type.members, name, &MemberType::name);
    if (found != item_type.members.end()) return &*found;
  }
  return nullptr;
}

std::string_view key_bytes(Value item, const MemberType& key) {
  const Value value = item.member(key);
  if (value.kind() == Kind::kText) return value.text().bytes();
  // A number is no key of an item that has nothing else either.
  if (is_empty(item)) return {};
  return {static_cast<const char*>(value.at()), value.type().size};
}

std::string key_text(Value item) {
  const MemberType* const key = key_member(item.type());
  if (!key || key_bytes(item, *key).empty()) return {};
  const Value value = item.member(*key);
  return value.kind() == Kind::kText ? std::string(value.text().bytes()) : std::to_string(value.integer());
}

}  // namespace trvtrout::vtrfile
