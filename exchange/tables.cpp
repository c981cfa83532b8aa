#include "exchange/tables.h"

#include <algorithm>
#include <array>

#include "vtrfile/item_keys.h"
#include "vtrfile/sections.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;
using vtrfile::MemberType;
using vtrfile::Value;
using vtrfile::ValueType;

constexpr std::string_view kHeaderTable = "header";

// What the rows of a kind are called, by the name of the record; of texts by the section and the list.
struct TableName {
  std::string_view record;
  std::string_view name;
  std::string_view hidden_name = {};  // in the section "Hidden", where it's another
};
constexpr auto kTableNames = std::to_array<TableName>({
    {"HEADER_STRUCT", kHeaderTable},
    {"SCHEMA_WITH", "section_schema"},
    {"RELATION_STRUCT", "section_relation"},
    {"HIDETABLES_STRUCT", "section_hidden"},
    {"TREE_HIERARCHY_STRUCT", "section_tree"},
    {"LANGUAGE_STRUCT", "section_language"},
    {"MODULE_STRUCT", "section_module"},
    {"DATASEND_STRUCT", "section_data_send"},
    {"FIELD_MATCHES_STRUCT", "section_field_matches"},
    {"EXTENDED_STORAGE_STRUCT", "section_extended_storage"},
    {"INCLUDEFILE_STRUCT", "section_include_files"},
    {"CONTROLTAG_STRUCT", "section_control_tags"},
    {"DSNMAIN_STRUCT", "section_dsn_list"},
    {"IMPORT_FILES", "section_import_files"},
    {"RESIDUAL_TABLES_STRUCT", "section_residual_tables"},
    {"PRODUCT_LIST_ITEM_STRUCT", "product_items"},
    {"TABLES_ITEM_STRUCT", "tables", "hidden_tables"},
    {"FIELDS_ITEM_STRUCT", "fields", "hidden_fields"},
    {"TABLE_LIST_A_ITEM_STRUCT", "table_list_a", "hidden_table_list_a"},
    {"TABLE_LIST_A_SUB_ITEM_STRUCT", "table_list_a_sub", "hidden_table_list_a_sub"},
    {"TABLE_LIST_B_ITEM_STRUCT", "table_list_b", "hidden_table_list_b"},
    {"HIDDEN_LOOKUP_ITEM_STRUCT", "hidden_lookups"},
    {"LOOKUPS_ITEM_STRUCT", "lookups", "hidden_lookup_items"},
    {"LOOKUP_LIST_A_ITEM_STRUCT", "lookup_list_a", "hidden_lookup_list_a"},
    {"LOOKUP_LIST_B_ITEM_STRUCT", "lookup_list_b", "hidden_lookup_list_b"},
    {"RELATION_ITEM_STRUCT", "relations"},
    {"RELATION_SIDE_ITEM_STRUCT", "relation_sides"},
    {"RELATION_PART_ITEM_STRUCT", "relation_parts"},
    {"TREE_HIERARCHY_ITEM_STRUCT", "tree_nodes"},
    {"LANGUAGE_ITEM_STRUCT", "languages"},
    {"LANGUAGE_COLUMN_STRUCT", "language_columns"},
    {"MODULE_ITEM_STRUCT", "modules"},
    {"DATASEND_ITEM_STRUCT", "definitions"},
    {"DATASEND_NODE_STRUCT", "nodes"},
    {"DATASEND_EXTRA_STRUCT", "definition_extras"},
    {"DATASEND_EXTRA_ITEM_STRUCT", "definition_extra_items"},
    {"FIELD_MATCH_ITEM_STRUCT", "field_matches"},
    {"EXTENDED_STORAGE_ITEM_STRUCT", "extended_storage"},
    {"INCLUDEFILE_ITEM_STRUCT", "include_files"},
    {"CONTROLTAG_ITEM_STRUCT", "control_tags"},
    {"DSN_ITEM_STRUCT", "dsn_list"},
    {"DSN_ENTRY_STRUCT", "dsn_entries"},
    {"RESIDUAL_TABLE_ITEM_STRUCT", "residual_tables"},
    {"IMPORT_FILE_ITEM_STRUCT", "import_files"},
    {"", "definition_texts"},
});

std::string name_of(std::string_view section, const ValueType& row) {
  const auto found = std::ranges::find(kTableNames, std::string_view(row.name), &TableName::record);
  if (found == kTableNames.end()) throw std::logic_error("no table is named for " + std::string(row.name));
  constexpr std::string_view kHidden = vtrfile::kSection<&vtrfile::DocumentSlots::Hidden>.tag;
  return std::string(section == kHidden && !found->hidden_name.empty() ? found->hidden_name : found->name);
}

class TableMaker {
 public:
  TableMaker() {
    const vtrfile::DocumentSlots none;
    add({}, header_of(none).type(), nullptr);
    for (const auto& section : sections_of(none)) add(section.tag, section.record.type(), nullptr);
  }
  std::vector<std::unique_ptr<TableType>> take() { return std::move(tables_); }

 private:
  // Where a member of a row's record stands: what is in front of its name, in columns and in paths, and its offset.
  struct Nested {
    std::string columns, path;
    std::size_t offset;
  };

  TableType& add(std::string_view section, const ValueType& row, const TableType* parent) {
    TableType& table = *tables_.emplace_back(std::make_unique<TableType>());
    table.name = name_of(section, row);
    table.section = section;
    table.row = &row;
    table.parent = parent;
    if (row.kind == Kind::kRecord) {
      add_members(table, row, {});
    } else {
      table.columns.push_back({"Text", {"Text", 0, &row, {}}});
    }
    if (const MemberType* const key = row.kind == Kind::kRecord && parent ? key_member(row) : nullptr) {
      table.key = &*std::ranges::find(table.columns, std::string_view(key->name), &Column::name);
    }
    return table;
  }

  void add_members(TableType& table, const ValueType& record, const Nested& nested) {
    for (const MemberType& member : record.members) {
      MemberType placed = member;
      placed.offset += nested.offset;
      const std::string name = nested.columns + member.name, path = nested.path + member.name;
      const ValueType& type = *member.type;
      if (type.kind == Kind::kRecord) {
        add_members(table, type, {name + '_', path + '/', placed.offset});
      } else if (type.kind == Kind::kArray || (type.kind == Kind::kRun && type.element->kind == Kind::kRecord)) {
        add_list(table, {path, placed, nullptr});
      } else if (type.kind == Kind::kRun) {
        add_run(table, name, placed);
      } else {
        table.columns.push_back({name, placed});
      }
    }
  }

  void add_run(TableType& table, const std::string& name, MemberType member) {
    const ValueType& run = *member.type;
    member.type = run.element;
    for (std::size_t place = 1; place <= run.count; ++place, member.offset += run.element->size) {
      table.columns.push_back({name + '_' + std::to_string(place), member});
    }
  }

  // Lists of one kind in one record have one table.
  void add_list(TableType& table, ListType list) {
    const ValueType& element = *list.member.type->element;
    const auto same = std::ranges::find_if(
        table.lists, [&](const ListType& other) { return other.member.type->element == &element; });
    if (same != table.lists.end()) {
      list.table = same->table;
      for (const auto& known : tables_) known->several_lists |= known.get() == list.table;
    } else {
      list.table = &add(table.section, element, &table);
    }
    table.lists.push_back(std::move(list));
  }

  std::vector<std::unique_ptr<TableType>> tables_;
};

class RowWalk {
 public:
  explicit RowWalk(const std::function<std::int64_t(const Row&)>& take) : take_(take) {}

  void begin(const TableType& table, Value record) {
    path_ = table.section.empty() ? table.name : table.section;
    row({table, record, 0, nullptr, 0, path_, {}});
  }

 private:
  void row(const Row& row) {
    const std::int64_t taken = take_(row);
    for (const ListType& list : row.table.lists) items(row.value.member(list.member), list, taken);
  }

  void items(Value values, const ListType& list, std::int64_t parent) {
    const std::size_t parent_path = path_.size();
    path_ += '/';
    path_ += list.path;
    path_ += '[';
    const std::size_t list_path = path_.size();
    for (std::uint32_t at = 0; at < values.elements(); ++at) {
      const Value item = values.element(at);
      if (is_empty(item)) continue;
      path_ += std::to_string(at + 1);
      path_ += ']';
      const std::string_view path = path_;
      row({*list.table, item, parent, &list, at + 1, path, path.substr(0, parent_path)});
      path_.resize(list_path);
    }
    path_.resize(parent_path);
  }

  const std::function<std::int64_t(const Row&)>& take_;
  std::string path_;
};

}  // namespace

const std::vector<std::unique_ptr<TableType>>& table_types() {
  static const auto kTables = TableMaker().take();
  return kTables;
}

void for_each_row(const vtrfile::DocumentSlots& document, const std::function<std::int64_t(const Row&)>& take) {
  const auto sections = sections_of(document);
  RowWalk walk(take);
  for (const auto& table : table_types()) {
    if (table->parent) continue;
    const auto section = std::ranges::find(sections, table->section, &vtrfile::SectionValue::tag);
    walk.begin(*table, section == sections.end() ? header_of(document) : section->record);
  }
}

}  // namespace trvtrout::exchange
