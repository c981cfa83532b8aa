#pragma once

#include <string>
#include <string_view>

#include "vtrfile/value_types.h"

namespace trvtrout::differences {

// The member by which an item of a list is known; null for a list without a key.
const vtrfile::MemberType* key_member(const vtrfile::ValueType& item_type);

// The key of an item as bytes, to be held against those of other items of its list; empty when it has none. Holds as
// long as the document.
std::string_view key_bytes(vtrfile::Value item, const vtrfile::MemberType& key);

// The key of an item for people and programs, in the code page of the document; empty when it has none.
std::string key_text(vtrfile::Value item);

}  // namespace trvtrout::differences
