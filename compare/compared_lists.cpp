#include "compare/compared_lists.h"

#include <algorithm>
#include <array>

#include "reports/columns.h"
#include "vtrfile/value_types.h"
#include "vtrfile/variant.h"

namespace trvtrout {
namespace {

template <class Item, std::size_t Count>
constexpr bool differ(const std::array<Column<Item>, Count>& columns, const void* one, const void* other) {
  return std::ranges::any_of(columns, [&](const Column<Item>& column) {
    const bool looked_at = column.mark == Mark::kCompared || column.mark == Mark::kKey;
    return looked_at && !column.same(*static_cast<const Item*>(one), *static_cast<const Item*>(other));
  });
}

template <const auto& kColumns>
constexpr ComparedList list(std::string_view path) {
  return {path, [](const void* one, const void* other) { return differ(kColumns, one, other); }};
}

// As they are compared: only texts with the indexes 0 to 3 are looked at, and none of a definition that had no scripts.
bool scripts_differ(vtrfile::Var one, vtrfile::Var other) {
  constexpr int kScripts = 4;
  if (one.empty() || equal(one, other)) return false;
  try {
    for (int script = 0; script < kScripts; ++script) {
      const auto old_value = vtrfile::element_of(one, script), new_value = vtrfile::element_of(other, script);
      if (old_value.tag != vtrfile::kVariantText || new_value.tag != vtrfile::kVariantText) return true;
      if (vtrfile::Text(old_value.body) != vtrfile::Text(new_value.body)) return true;
    }
  } catch (const vtrfile::SubscriptOutOfRange&) {
    return true;
  }
  return false;
}

// Two values of a definition are compared that no column shows as they are.
bool definitions_differ(const void* one, const void* other) {
  const auto header_of = [](const void* item) -> const auto& {
    return static_cast<const vtrfile::DATASEND_ITEM_STRUCT*>(item)->Header;
  };
  return differ(kDefinitionColumns, one, other) || header_of(one).Number1 != header_of(other).Number1 ||
         scripts_differ(header_of(one).VBSInfo, header_of(other).VBSInfo);
}

constexpr std::array kLists = {
    list<kIncludeFileColumns>("IncludeFile/Items"),
    list<kModuleColumns>("Module/Items"),
    list<kTableColumns>("Schema/Tables/Items"),
    list<kFieldColumns>("Schema/Tables/Items/Fields/Items"),
    list<kLookupColumns>("Schema/Lookups/Items"),
    list<kTreeColumns>("TreeHierarchy/Items"),
    list<kLanguageColumns>("Language/Items"),
    list<kControlTagColumns>("ControlTag/Items"),
    ComparedList{"TarvelDefinitionHeader/Items", definitions_differ},
    list<kNodeColumns>("TarvelDefinitionHeader/Items/Nodes"),
};

}  // namespace

std::span<const ComparedList> compared_lists() { return kLists; }

}  // namespace trvtrout
