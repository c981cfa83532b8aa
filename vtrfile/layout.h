#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/value_types.h"

namespace trvtrout::vtrfile {

// How a record's bytes lie in the file: its fields with nested records and fixed runs taken apart, for code that goes
// through bytes of which it isn't known yet whether they are such a record.
struct Layout {
  enum class Form : std::uint8_t { kRaw, kInteger, kFloat, kFlag, kText, kVariants, kBytes, kList };
  enum class Role : std::uint8_t { kNone, kKey, kCount, kMax, kCurrent };
  struct Step {
    Form form;
    Role role;
    std::uint32_t size;         // bytes of one that is no text, slots of a kVariants
    std::uint32_t list;         // of a count: the step of its list
    const Layout* item;         // of a kList
    std::string path;           // of a kList: the names of the members down to it
    std::uint64_t least_bytes;  // that it takes in the file
  };

  std::vector<Step> steps;
  std::uint64_t least_bytes = 0;
  std::uint32_t label = kNoStep;  // the text by which people know such an item
  bool has_key = false;           // an item without one is an unused slot
  std::uint32_t behind_keys = 0;  // the step behind its keys
  bool has_lists = false;

  static constexpr std::uint32_t kNoStep = ~std::uint32_t{0};
  std::uint32_t size() const noexcept { return static_cast<std::uint32_t>(steps.size()); }
  // The first list at this step or behind it; size() when there is none.
  std::uint32_t list_from(std::uint32_t step) const noexcept {
    while (step < size() && steps[step].form != Form::kList) ++step;
    return step;
  }
};

// The bytes of a value of this type in a file of this version. The first call for a type makes its layout, which stays.
const Layout& layout_of(const ValueType& type, std::string_view version);

}  // namespace trvtrout::vtrfile
