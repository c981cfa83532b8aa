#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "vtrfile/fields.h"

// The check that a field list is complete. A name that is no member doesn't compile as it is; what is left to find is a
// member that nobody named.
namespace trvtrout::vtrfile {

// Initializes whatever stands at its place.
struct AnyMember {
  template <class Type>
  constexpr operator Type() const;
};

// Whether a record can be made from this many initializers; not from more than it has members and bases.
template <class Record, std::size_t... Place>
consteval bool takes(std::index_sequence<Place...>) {
  return requires { Record{(static_cast<void>(Place), AnyMember{})...}; };
}

// Whether the field list names all members of the record, each once; a record without a list of its own may add none
// to its base's.
template <RecordType Record>
consteval bool names_all_members() {
  using Listed = typename Record::Listed;
  if constexpr (!std::is_same_v<Record, Listed>) {
    return !takes<Record>(std::make_index_sequence<2>()) && names_all_members<Listed>();
  } else {
    constexpr std::size_t kNames = 1 + std::ranges::count(std::string_view(Record::kListed), ',');
    constexpr std::size_t kBases = std::is_void_v<typename Record::ListedBase> ? 0 : 1;
    std::vector<std::string_view> names;
    Record record{};
    const auto enter = [&](std::string_view name, auto&) { names.push_back(name); };
    for_each_field(record, enter);
    std::ranges::sort(names);
    const bool once = std::ranges::adjacent_find(names) == names.end();
    return once && !takes<Record>(std::make_index_sequence<kBases + kNames + 1>());
  }
}

}  // namespace trvtrout::vtrfile
