#pragma once

#include <string>
#include <string_view>

#include "vtrfile/value_types.h"

namespace trvtrout::vtrfile {

// The member by which an item of a list is known; null for a list without a key.
const MemberType* key_member(const ValueType& item_type);

// The key of an item as bytes, to be held against those of other items of its list; empty when it has none. Holds as
// long as the document.
std::string_view key_bytes(Value item, const MemberType& key);

// The key of an item for people and programs, in the code page of the document; empty when it has none.
std::string key_text(Value item);

}  // namespace trvtrout::vtrfile
