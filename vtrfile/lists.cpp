#include "vtrfile/lists.h"

#include <algorithm>
#include <limits>

#include "vtrfile/sections.h"

namespace trvtrout::vtrfile {
namespace {

// Whether a slot of a list is used.
bool is_used(const INCLUDEFILE_ITEM_STRUCT& item) { return !item.FileName.empty(); }
bool is_used(const TABLES_ITEM_STRUCT& item) { return !item.Tid.empty(); }
bool is_used(const LOOKUPS_ITEM_STRUCT& item) { return !item.Id.empty(); }
bool is_used(const LANGUAGE_ITEM_STRUCT& item) { return !item.Code.empty(); }
bool is_used(const FIELDS_ITEM_STRUCT& item) { return !item.Fid.empty(); }
bool is_used(const TREE_HIERARCHY_ITEM_STRUCT& node) { return !node.Description.empty() || !node.Tid.empty(); }
template <class Item>
requires requires(const Item& item) { item.ControlTag; }
bool is_used(const Item& item) { return !item.ControlTag.empty(); }
template <class Item>
requires requires(const Item& item) { item.Key; }
bool is_used(const Item& item) { return !item.Key.empty(); }

// Steps `size` back from the end of the array over its unused slots. An array without a used slot runs off its lower
// end, which raises SubscriptOutOfRange as any index outside the array does; `size` keeps what was reached.
template <class Item>
void step_back(const Array<Item>& items, std::int64_t last, std::int32_t& size) {
  for (std::int64_t index = last; !is_used(items.at(index)); --index) --size;
}

// `count_size` counts into its argument and raises SubscriptOutOfRange where the list breaks.
template <class CountSize>
ListInfo with_size(ListInfo info, CountSize count_size) {
  try {
    count_size(info.size);
    info.ok = true;
  } catch (const SubscriptOutOfRange&) {
  }
  return info;
}

// A list whose number of slots isn't 0 has an array; one without such a number goes by its count.
template <class List>
ListInfo recount_list(const List& list) {
  ListInfo info{.count = list.Count};
  std::int32_t announced = list.Count;
  if constexpr (requires { list.Max; }) {
    info.current = list.Current;
    info.max = list.Max;
    announced = list.Max;
  }
  return with_size(info, [&](std::int32_t& size) {
    if (announced == 0) return;
    if (!list.Items.allocated()) throw SubscriptOutOfRange();
    size = static_cast<std::int32_t>(list.Items.size());
    step_back(list.Items, list.Items.size(), size);
  });
}

ListInfo recount_fields(const TABLES_STRUCT& tables) {
  return with_size({}, [&](std::int32_t& size) {
    if (tables.Max == 0) return;
    for (std::int32_t table = 1; table <= tables.Count; ++table) {
      const FIELDS_STRUCT& fields = tables.Items.at(table).Fields;
      if (fields.Max == 0) continue;
      const std::int64_t slots = fields.Items.size();
      // A table's slots are counted with 16 bits.
      if (!fields.Items.allocated() || slots > std::numeric_limits<std::int16_t>::max()) throw SubscriptOutOfRange();
      size += static_cast<std::int32_t>(slots);
      step_back(fields.Items, slots, size);
    }
  });
}

ListInfo recount_nodes(const DocumentSlots& document) {
  const DATASEND_STRUCT& definitions = *document.DataSend;
  return with_size({.count = definitions.Count}, [&](std::int32_t& size) {
    for (std::int32_t item = 1; item <= definitions.Count; ++item) {
      const DATASEND_ITEM_STRUCT& definition = definitions.Items.at(item);
      if (definition.Count == 0) continue;
      if (!definition.Nodes.allocated()) throw SubscriptOutOfRange();
      size += static_cast<std::int32_t>(definition.Nodes.size());
    }
  });
}

// Calls visit(item) for each element that the file held; those that it only announced come behind them.
template <class Item, class Visit>
void for_each_held(const Array<Item>& items, Visit&& visit) {
  const std::uint32_t held = items.allocated() ? std::min(items.block().stored, items.block().count) : 0;
  for (std::uint32_t place = 0; place < held; ++place) visit(items.position(place));
}

// `announced`: what the file says, which may be below 0.
template <class Item, class IsUsed>
RecordCount count_records(std::int64_t announced, const Array<Item>& items, IsUsed&& used) {
  RecordCount count{.announced = std::max<std::int64_t>(announced, 0)};
  std::int64_t held = 0;
  for_each_held(items, [&](const Item& item) {
    ++held;
    if (used(item)) ++count.used;
  });
  count.surplus = std::max<std::int64_t>(count.used - count.announced, 0);
  count.empty = items.size() - held;
  return count;
}

template <class List>
RecordCount count_list(const List& list) {
  return count_records(list.Count, list.Items, [](const auto& item) { return is_used(item); });
}

constexpr auto kAny = [](const auto&) { return true; };

// Empties one list of a record; all else of the record stays.
template <auto Slot, auto Member>
void empty_member(DocumentSlots& document) {
  auto& slot = document.*Slot;
  const auto whole = *slot;
  slot.renew({slot.keep()}, [&](auto& record, std::pmr::memory_resource&) {
    record = whole;
    record.*Member = {};
  });
}

template <auto Slot>
void empty_record(DocumentSlots& document) {
  (document.*Slot).clear();
}

// The list that is the record of a section.
template <auto Slot>
constexpr DocumentList whole_record(ListId id, const char* title, const char* key, std::u16string_view error) {
  return {id,
          kSection<Slot>.tag,
          kSection<Slot>.structure,
          title,
          key,
          error,
          [](const DocumentSlots& document) { return recount_list(*(document.*Slot)); },
          [](const DocumentSlots& document) { return count_list(*(document.*Slot)); },
          empty_record<Slot>};
}

// A list that is a member of a section's record.
template <auto Slot, auto Member>
constexpr DocumentList member(ListId id, std::string_view structure, const char* title, const char* key,
                              std::u16string_view error, void (*empty)(DocumentSlots&)) {
  return {id,
          kSection<Slot>.tag,
          structure,
          title,
          key,
          error,
          [](const DocumentSlots& document) { return recount_list((*(document.*Slot)).*Member); },
          [](const DocumentSlots& document) { return count_list((*(document.*Slot)).*Member); },
          empty};
}

// The fields of all tables of a section. When they don't hold together the tables still do, so they stay.
template <auto Slot>
constexpr DocumentList fields(ListId id, std::string_view structure, const char* title, const char* key,
                              std::u16string_view error) {
  return {id,
          kSection<Slot>.tag,
          structure,
          title,
          key,
          error,
          [](const DocumentSlots& document) { return recount_fields((document.*Slot)->Tables); },
          [](const DocumentSlots& document) {
            RecordCount all;
            for_each_held((document.*Slot)->Tables.Items, [&](const auto& table) { all += count_list(table.Fields); });
            return all;
          },
          nullptr};
}

using Slots = DocumentSlots;

constexpr DocumentList kLists[] = {
    member<&Slots::Schema, &SCHEMA_STRUCT::Tables>(ListId::kTables, "TABLES_STRUCT", "Tables", "tables",
                                                   u"ErrTableInfo",
                                                   empty_member<&Slots::Schema, &SCHEMA_STRUCT::Tables>),
    fields<&Slots::Schema>(ListId::kFields, "FIELDS_STRUCT", "Fields of all tables", "fields", u"ErrFieldInfo"),
    member<&Slots::Schema, &SCHEMA_STRUCT::Lookups>(ListId::kLookups, "LOOKUPS_STRUCT", "Lookups", "lookups",
                                                    u"ErrLookupInfo",
                                                    empty_member<&Slots::Schema, &SCHEMA_STRUCT::Lookups>),
    member<&Slots::Relation, &RELATION_STRUCT::Relations>(ListId::kRelations, "Relation", "Relations", "relations",
                                                          u"ErrRelInfo", empty_record<&Slots::Relation>),
    member<&Slots::Hidden, &HIDETABLES_STRUCT::Tables>(ListId::kHiddenTables, "HIDETABLES_STRUCT", "Hidden tables",
                                                       "hiddenTables", u"ErrTableInfo",
                                                       empty_member<&Slots::Hidden, &HIDETABLES_STRUCT::Tables>),
    fields<&Slots::Hidden>(ListId::kHiddenFields, "HIDDEN_FIELDS_STRUCT", "Fields of hidden tables", "hiddenFields",
                           u"ErrHidFieldInfo"),
    // Those that don't hold together stay: nothing that could be read is given up without need.
    member<&Slots::Hidden, &HIDETABLES_STRUCT::Lookups>(ListId::kHiddenLookups, "HIDEFIELDS_STRUCT", "Hidden lookups",
                                                        "hiddenLookups", u"ErrHidLookInfo", nullptr),
    whole_record<&Slots::Tree>(ListId::kTree, "Tree nodes", "tree", u"ErrTreeInfo"),
    whole_record<&Slots::Language>(ListId::kLanguages, "Language texts", "languages", u"ErrLanInfo"),
    whole_record<&Slots::Module>(ListId::kModules, "Modules", "modules", u"ErrMdlInfo"),
    whole_record<&Slots::FieldMatches>(ListId::kFieldMatches, "Field matches", "fieldMatches", u"ErrFmsInfo"),
    whole_record<&Slots::Extended>(ListId::kExtendedStorage, "Extended storage", "extendedStorage", u"ErrExtInfo"),
    whole_record<&Slots::IncludeFile>(ListId::kIncludeFiles, "Include files", "includeFiles", u"ErrInclInfo"),
    whole_record<&Slots::ControlTag>(ListId::kControlTags, "Control tags", "controlTags", u"ErrTagInfo"),
    whole_record<&Slots::DSNList>(ListId::kDsnList, "DSN list", "dsnList", u"ErrDSNInfo"),
    whole_record<&Slots::ImportFiles>(ListId::kImportFiles, "Import files", "importFiles", u"ErrIncNewInfo"),
    whole_record<&Slots::ResidualTable>(ListId::kResidualTables, "Residual tables", "residualTables",
                                        u"ErrResiTblInfo"),
    {ListId::kDataSend, kSection<&Slots::DataSend>.tag, kSection<&Slots::DataSend>.structure, "Data send items, nodes",
     "dataSend", u"ErrDsmInfo", recount_nodes,
     [](const DocumentSlots& document) { return node_records(*document.DataSend); }, empty_record<&Slots::DataSend>},
};

consteval bool stand_at_their_ids() {
  for (std::size_t place = 0; place < std::size(kLists); ++place) {
    if (kLists[place].id != ListId{static_cast<int>(place)}) return false;
  }
  return true;
}
static_assert(stand_at_their_ids());

}  // namespace

RecordCount& RecordCount::operator+=(const RecordCount& other) {
  announced += other.announced;
  used += other.used;
  surplus += other.surplus;
  empty += other.empty;
  return *this;
}

std::span<const DocumentList> document_lists() { return kLists; }

const DocumentList& list_of(ListId id) { return kLists[static_cast<std::size_t>(id)]; }

RecordCount definition_records(const DATASEND_STRUCT& definitions) {
  return count_records(definitions.Count, definitions.Items, kAny);
}

RecordCount node_records(const DATASEND_STRUCT& definitions) {
  RecordCount all;
  for_each_held(definitions.Items, [&](const auto& item) { all += count_records(item.Count, item.Nodes, kAny); });
  return all;
}

}  // namespace trvtrout::vtrfile
