#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "reports/cells.h"
#include "vtrfile/records/data_send.h"
#include "vtrfile/records/header.h"
#include "vtrfile/records/language.h"
#include "vtrfile/records/lists.h"
#include "vtrfile/records/lookups.h"
#include "vtrfile/records/module.h"
#include "vtrfile/records/schema.h"
#include "vtrfile/records/tables.h"
#include "vtrfile/records/tree.h"

// The columns of the reports, a table for each list: what stands over a column, and how its cell comes from an item.
namespace trvtrout {

// What a column is for a comparison.
enum class Mark {
  kCompared,
  kKey,         // by which records find their partners
  kPrinted,     // a difference in it makes no change
  kReportOnly,  // not in a comparison
};

// Whether two stored values are the same. A number that is none differs from itself; then the bits tell.
template <class Value>
bool same_value(const Value& one, const Value& other) {
  return one == other;
}
inline bool same_value(float one, float other) {
  return one == other || std::bit_cast<std::uint32_t>(one) == std::bit_cast<std::uint32_t>(other);
}

template <class Item>
struct Column {
  std::string_view head;
  void (*append)(std::string& row, const Item& item);
  // By the stored values, before any cleaning.
  bool (*same)(const Item& one, const Item& other);
  Mark mark;
};

// The column of a member, or of what a lambda takes from the item.
template <class Item, auto Member, Form form = Form::kAsStored>
constexpr Column<Item> column(std::string_view head, Mark mark = Mark::kCompared) {
  return {head, [](std::string& row, const Item& item) { append_cell(row, std::invoke(Member, item), form); },
          [](const Item& one, const Item& other) {
            return same_value(std::invoke(Member, one), std::invoke(Member, other));
          },
          mark};
}

// "Filter" of a field: the words of the flags that are set, then the cleaned text, each with a blank behind it.
inline void append_filter(std::string& row, const vtrfile::FIELDS_ITEM_STRUCT& field) {
  using Filter = vtrfile::FIELD_FILTER_STRUCT;
  static constexpr struct {
    vtrfile::Flag Filter::*flag;
    std::string_view word;
  } kWords[] = {{&Filter::FilterFlagY, "Y "},      {&Filter::FilterFlagYDL, "Y-DL "},
                {&Filter::FilterFlagYSL, "Y-SL "}, {&Filter::FilterFlagCur, "Cur "},
                {&Filter::FilterFlagSum, "Sum "},  {&Filter::FilterFlag999, "{999} "}};
  for (const auto& [flag, word] : kWords) {
    if (field.Filter.*flag) row += word;
  }
  append_text(row, field.Filter.FilterText.bytes(), Form::kCleanedThenBlank);
}

// One of the sixteen texts of a language item.
template <std::size_t Place>
constexpr Column<vtrfile::LANGUAGE_ITEM_STRUCT> language() {
  return column<vtrfile::LANGUAGE_ITEM_STRUCT, [](const auto& item) { return item.Texts[Place]; }>(
      vtrfile::kLanguageNames[Place]);
}

// What a list says of itself, in the orders in which the reports show it.
template <class List>
constexpr auto kCount = std::array{column<List, &List::Count>("Count:")};
template <class List>
constexpr auto kCountCurrentMax = std::array{
    column<List, &List::Count>("Count:"),
    column<List, &List::Current>("Current:"),
    column<List, &List::Max>("Max:"),
};
template <class List>
constexpr auto kCurrentCountMax = std::array{
    column<List, &List::Current>("Current:"),
    column<List, &List::Count>("Count:"),
    column<List, &List::Max>("Max:"),
};

inline constexpr auto kHeaderLabels =
    std::array{column<vtrfile::HEADER_STRUCT, &vtrfile::HEADER_STRUCT::Modified>("Last Modified:")};

inline constexpr auto kDataSendLabels = [] {
  using L = vtrfile::DATASEND_STRUCT;
  return std::array{
      column<L, [](const L& list) { return list.File.FileHeader; }>("FileHeader:"),
      column<L, [](const L& list) { return list.File.Version; }>("Version:"),
      column<L, &L::Count>("Count:"),
  };
}();

// The product's values, one under the other, each behind its label.
inline constexpr auto kProductLabels = [] {
  using P = vtrfile::PRODUCT_STRUCT;
  return std::array{
      column<P, &P::Code>("Code:"),
      column<P, &P::Description>("Description:"),
      column<P, &P::SerialIndex>("SerialIndex:"),
      column<P, &P::Version>("Version:"),
      column<P, &P::Database>("Database:"),
      column<P, &P::SQLInitialize, Form::kCleaned>("SQLInitialize:"),
      column<P, &P::SQLControlTags, Form::kCleaned>("SQLControlTags:"),
      column<P, &P::SQLTermination, Form::kCleaned>("SQLTermination:"),
      column<P, &P::SQLUserList, Form::kCleaned>("SQLUserList:"),
  };
}();

inline constexpr auto kIncludeFileColumns = [] {
  using I = vtrfile::INCLUDEFILE_ITEM_STRUCT;
  return std::array{column<I, &I::FileName>("FileName:", Mark::kKey)};
}();

inline constexpr auto kModuleColumns = [] {
  using I = vtrfile::MODULE_ITEM_STRUCT;
  return std::array{
      column<I, &I::Id>("Id:", Mark::kKey),
      column<I, &I::Description>("Description"),
      column<I, &I::ControlTag>("ControlTag"),
      column<I, &I::ProductIDScipt, Form::kCleaned>("ProductIDScipt"),
      column<I, &I::Password>("Password"),
      column<I, &I::Attributes>("Attributes"),
      column<I, &I::GlobalAttributes>("GlobalAttributes"),
  };
}();

inline constexpr auto kTableColumns = [] {
  using I = vtrfile::TABLES_ITEM_STRUCT;
  return std::array{
      column<I, &I::Tid>("Tid", Mark::kKey),
      column<I, &I::Attribute>("Attribute"),
      column<I, &I::Name, Form::kCleaned>("Name"),
      column<I, &I::UserCode>("UserCode"),
      column<I, &I::InternalCode, Form::kCleaned>("InternalCode"),
      column<I, &I::RootWHERE, Form::kCleaned>("RootWHERE"),
      column<I, &I::WHERE, Form::kCleaned>("WHERE"),
      column<I, &I::JoinClause, Form::kCleaned>("JoinClause"),
      column<I, [](const I& table) { return table.Fields.Current; }>("Current", Mark::kReportOnly),
      column<I, [](const I& table) { return table.Fields.Count; }>("Count"),
      column<I, [](const I& table) { return table.Fields.Max; }>("Max", Mark::kReportOnly),
  };
}();

// Behind "Tid", which is the table's.
inline constexpr auto kFieldColumns = [] {
  using I = vtrfile::FIELDS_ITEM_STRUCT;
  return std::array{
      column<I, &I::Fid>("Fid", Mark::kKey),
      column<I, &I::Attribute>("Attribute"),
      column<I, &I::InternalCode>("InternalCode"),
      column<I, &I::SQLField, Form::kCleaned>("SQLField"),
      column<I, &I::Description, Form::kCleaned>("Description"),
      column<I, &I::vbVarType>("vbVarType"),
      column<I, &I::Lenght>("Lenght"),
      column<I, &I::SQLType>("SQLType"),
      column<I, &I::Select>("Select"),
      Column<I>{"Filter", append_filter, nullptr, Mark::kPrinted},
      column<I, &I::Lookups>("Lookups"),
      column<I, &I::LookupsID>("LookupsID"),
      column<I, &I::SQLJoinClause, Form::kCleaned>("SQLJoinClause"),
  };
}();

inline constexpr auto kLookupColumns = [] {
  using I = vtrfile::LOOKUPS_ITEM_STRUCT;
  return std::array{
      column<I, &I::Id>("Id", Mark::kKey),
      column<I, &I::Code>("Code"),
      column<I, &I::Description, Form::kCleaned>("Description"),
      column<I, &I::Type>("Type"),
  };
}();

inline constexpr auto kTreeColumns = [] {
  using I = vtrfile::TREE_HIERARCHY_ITEM_STRUCT;
  return std::array{
      column<I, &I::Description, Form::kCleanedThenBlank>("Description"),
      column<I, &I::Level>("Level"),
      column<I, &I::Control>("Control", Mark::kKey),
      column<I, &I::Tid>("Tid"),
      column<I, &I::TableInternalCode>("TableInternalCode"),
      column<I, &I::Filter, Form::kWithoutCommas>("Filter"),
      column<I, &I::ParentCodePath>("ParentCodePath"),
      column<I, &I::CodePath>("CodePath"),
  };
}();

inline constexpr auto kControlTagColumns = [] {
  using I = vtrfile::CONTROLTAG_ITEM_STRUCT;
  return std::array{
      column<I, &I::ControlTag, Form::kCleaned>("ControlTag", Mark::kKey),
      column<I, &I::Tagvalue, Form::kCleaned>("Tagvalue"),
  };
}();

inline constexpr auto kLanguageColumns = [] {
  using I = vtrfile::LANGUAGE_ITEM_STRUCT;
  return std::array{
      column<I, &I::Code>("Code", Mark::kKey),
      column<I, &I::Category>("Category"),
      column<I, &I::GlobalAttribute>("GlobalAttribute"),
      language<0>(),
      language<1>(),
      language<2>(),
      language<3>(),
      language<4>(),
      language<5>(),
      language<6>(),
      language<7>(),
      language<8>(),
      language<9>(),
      language<10>(),
      language<11>(),
      language<12>(),
      language<13>(),
      language<14>(),
      language<15>(),
  };
}();

// Behind "Header", which is the definition's place in the list.
inline constexpr auto kDefinitionColumns = [] {
  using I = vtrfile::DATASEND_ITEM_STRUCT;
  return std::array{
      column<I, [](const I& item) { return item.Header.TypeCategory; }>("TypeCategory"),
      column<I, [](const I& item) { return item.Header.Version; }>("Version"),
      column<I, [](const I& item) { return item.Header.StructureName; }>("StructureName"),
      column<I, &I::Count>("Count", Mark::kPrinted),
  };
}();

// Behind "Header", which is the place of the node's definition.
inline constexpr auto kNodeColumns = [] {
  using I = vtrfile::DATASEND_NODE_STRUCT;
  return std::array{
      column<I, &I::Index>("Index", Mark::kKey),
      column<I, &I::ParentIndex>("Parent Index"),
      column<I, &I::LanguageKey>("LanguageKey"),
      column<I, &I::Description>("Description", Mark::kPrinted),
      column<I, &I::XMLTag>("XMLTag"),
      column<I, &I::DefaultValue>("DefaultValue"),
      column<I, &I::MinOccur>("MinOccur"),
      column<I, &I::MaxOccur>("MaxOccur"),
      column<I, &I::DataType>("DataType"),
      column<I, &I::MaxLength>("MaxLength"),
      column<I, &I::Precision>("Precision"),
      column<I, &I::OutputFormat>("OutputFormat"),
      column<I, &I::VitrionCodePathFixedlookup>("VitrionCodePathFixedlookup"),
      column<I, &I::VitrionTableFixedLookup>("VitrionTableFixedLookup"),
      column<I, &I::VitrionCodePathLookup>("VitrionCodePathLookup"),
      column<I, &I::VitrionTableLookup>("VitrionTableLookup"),
      column<I, &I::Visible>("Visible"),
      column<I, &I::IsHeaderOnly>("IsHeaderOnly"),
      column<I, &I::IsDriver>("IsDriver"),
      column<I, &I::IsKey>("IsKey"),
  };
}();

}  // namespace trvtrout
