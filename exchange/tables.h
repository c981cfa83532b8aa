#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/value_types.h"

// A document as tables, made from the field lists: one for the header, one for each section's own values, one for each
// kind of list item. What is nested in a record without being a list belongs to its row.
namespace trvtrout::exchange {

struct TableType;

struct Column {
  std::string name;            // of a nested record with its names in front: "Filter_FilterText"
  vtrfile::MemberType member;  // of the row's record; its offset leads into nested ones
};

// A list that the rows of a table have.
struct ListType {
  std::string path;  // "Fields/Items"
  vtrfile::MemberType member;
  const TableType* table;
};

struct TableType {
  std::string name;
  std::string section;  // the tag; empty for the header
  const vtrfile::ValueType* row = nullptr;
  const TableType* parent = nullptr;  // whose rows hold the lists; null for the header and the sections
  bool several_lists = false;         // a row of the parent holds more than one
  std::vector<Column> columns;        // of a row that is a single text: that alone
  std::vector<ListType> lists;
  const Column* key = nullptr;  // by which an item is known, if it is
};

// All of them, parents first.
const std::vector<std::unique_ptr<TableType>>& table_types();

// One row. A slot of a list that is as one that was never filled has none.
struct Row {
  const TableType& table;
  vtrfile::Value value;
  std::int64_t parent;           // what the taker returned for the row that holds the list; 0 without one
  const ListType* list;          // that it stands in; null without one
  std::uint32_t place;           // in the list, counted from 1; 0 without one
  std::string_view path;         // "Schema/Tables/Items[3]"
  std::string_view parent_path;  // of the row that holds the list
};

// Gives all rows to `take`, each behind the one that holds its list.
void for_each_row(const vtrfile::DocumentSlots& document, const std::function<std::int64_t(const Row&)>& take);

// The value of a column in a row of its table.
inline vtrfile::Value value_in(vtrfile::Value row, const Column& column) {
  return row.kind() == vtrfile::Kind::kRecord ? row.member(column.member) : row;
}

}  // namespace trvtrout::exchange
