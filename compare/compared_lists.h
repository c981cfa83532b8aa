#pragma once

#include <span>
#include <string_view>

namespace trvtrout {

// A list whose records one of the eight comparisons walks.
struct ComparedList {
  std::string_view path;  // the tag of the section and the members down to the list: "Schema/Tables/Items"
  // Whether a row would be labelled, or the record pair with another, because of what differs between the two, which
  // are records of the list's type.
  bool (*tells_apart)(const void* one, const void* other);
};

std::span<const ComparedList> compared_lists();

}  // namespace trvtrout
