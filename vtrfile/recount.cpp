#include "vtrfile/recount.h"

#include <limits>

namespace trvtrout::vtrfile {
namespace {

// Steps `size` back from the end of the array over its unused slots. An array without a used slot runs off its lower
// end, which raises SubscriptOutOfRange as any index outside the array does; `size` keeps what was reached.
template <class Item>
void step_back(const Array<Item>& items, std::int64_t last, std::int32_t& size) {
  for (std::int64_t index = last; !is_used(items.at(index)); --index) --size;
}

// The recount of a list whose array is there when `gate` isn't 0.
template <class List>
ListInfo recount_list(const List& list, std::int32_t gate) {
  ListInfo info{.count = list.Count};
  if constexpr (requires { list.Max; }) {
    info.current = list.Current;
    info.max = list.Max;
  }
  try {
    if (gate != 0) {
      if (!list.Items.allocated()) throw SubscriptOutOfRange();
      info.size = static_cast<std::int32_t>(list.Items.size());
      step_back(list.Items, list.Items.size(), info.size);
    }
    info.ok = true;
  } catch (const SubscriptOutOfRange&) {
  }
  return info;
}

}  // namespace

ListInfo recount(const INCLUDEFILE_STRUCT& list) { return recount_list(list, list.Max); }
ListInfo recount(const MODULE_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const TREE_HIERARCHY_STRUCT& list) { return recount_list(list, list.Max); }
ListInfo recount(const TABLES_STRUCT& list) { return recount_list(list, list.Max); }
ListInfo recount(const LOOKUPS_STRUCT& list) { return recount_list(list, list.Max); }
ListInfo recount(const CONTROLTAG_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const LANGUAGE_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const DSNMAIN_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const EXTENDED_STORAGE_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const FIELD_MATCHES_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const IMPORT_FILES& list) { return recount_list(list, list.Count); }
ListInfo recount(const RELATION_LIST_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const RESIDUAL_TABLES_STRUCT& list) { return recount_list(list, list.Count); }
ListInfo recount(const HIDDEN_LOOKUP_LIST_STRUCT& list) { return recount_list(list, list.Count); }

ListInfo recount_fields(const TABLES_STRUCT& tables) {
  ListInfo info;
  if (tables.Max == 0) return {.ok = true};
  try {
    for (std::int32_t table = 1; table <= tables.Count; ++table) {
      const FIELDS_STRUCT& fields = tables.Items.at(table).Fields;
      if (fields.Max == 0) continue;
      const std::int64_t slots = fields.Items.size();
      // A table's slots are counted with 16 bits.
      if (!fields.Items.allocated() || slots > std::numeric_limits<std::int16_t>::max()) throw SubscriptOutOfRange();
      info.size += static_cast<std::int32_t>(slots);
      step_back(fields.Items, slots, info.size);
    }
    info.ok = true;
  } catch (const SubscriptOutOfRange&) {
  }
  return info;
}

ListInfo recount_nodes(const DATASEND_STRUCT& definitions) {
  ListInfo info{.count = definitions.Count};
  try {
    for (std::int32_t item = 1; item <= definitions.Count; ++item) {
      const DATASEND_ITEM_STRUCT& definition = definitions.Items.at(item);
      if (definition.Count == 0) continue;
      if (!definition.Nodes.allocated()) throw SubscriptOutOfRange();
      info.size += static_cast<std::int32_t>(definition.Nodes.size());
    }
    info.ok = true;
  } catch (const SubscriptOutOfRange&) {
  }
  return info;
}

}  // namespace trvtrout::vtrfile
