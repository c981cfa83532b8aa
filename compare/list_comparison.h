#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "compare/comparisons.h"

namespace trvtrout {

// The records of a list that a comparison walks, as far as the array has them.
template <class Item, class Visit>
void for_each_record(const Side<Item>& side, Visit&& visit) {
  const std::int64_t last = std::min<std::int64_t>(side.count, side.items.upper());
  for (std::int64_t number = std::max<std::int64_t>(1, side.items.lower()); number <= last; ++number) {
    visit(side.items.at(number));
  }
}

// A block that compares two lists by a key: the titles, the numbers of both lists, and the walk.
template <class List, class Item>
struct ListComparison {
  std::string_view title;  // ends in the opening bracket
  std::span<const Column<List>> numbers;
  std::string_view item_title;  // the whole row
  std::span<const Column<Item>> columns;
  MatchKey (*key)(const Item&) = nullptr;  // of a list whose records have one
  std::string_view heads_tail = {};
  PartnerFrom from = PartnerFrom::kWorkingList;
  std::string_view heads_lead = ",,,";
  std::string_view single_lead = ",,,";  // of deleted and added rows
};

template <class List, class Item>
void write_heads(ComparisonWriter& writer, const ListComparison<List, Item>& block, const List& primary,
                 const List& secondary) {
  writer.title(block.title);
  writer.values(block.numbers, primary, secondary);
  writer.out().line(block.item_title);
  writer.out().heads(block.heads_lead, block.columns, block.heads_tail);
}

template <class List, class Item>
void write_list(ComparisonWriter& writer, const ListComparison<List, Item>& block, const List& primary,
                const List& secondary) {
  write_heads(writer, block, primary, secondary);
  const ItemRows<Item> rows{.writer = writer,
                            .columns = block.columns,
                            .primary = side_of(primary),
                            .secondary = side_of(secondary),
                            .single_lead = block.single_lead};
  ByKey policy = by_key(rows.primary, rows.secondary, block.key, block.from);
  walk(rows.primary.records(), policy, rows);
}

// The rows of records that show through the records of an inner list alone. These find their partners, by a key of
// their own, within a pair of the outer ones.
template <class Outer, class Inner>
struct NestedRows {
  ComparisonWriter& writer;
  Side<Outer> primary;
  Side<Outer> secondary;
  std::span<const Column<Inner>> columns;
  Side<Inner> (*inner)(const Outer&);
  MatchKey (*key)(const Inner&);
  std::string (*first_cell)(const Outer&, std::int32_t number);  // shown in front of the inner record's cells
  std::string_view tail = {};

  void pair(std::int32_t number, std::int32_t partner) const {
    const std::string lead = lead_of(primary, number);
    const auto rows = inner_rows(lead, inner(primary.at(number)), inner(secondary.at(partner)));
    ByKey policy = by_key(rows.primary, rows.secondary, key);
    walk(rows.primary.records(), policy, rows);
  }
  void deleted(std::int32_t number) const {
    const std::string lead = lead_of(primary, number);
    const auto rows = inner_rows(lead, inner(primary.at(number)), {});
    for (std::int32_t record = 1; record <= rows.primary.records(); ++record) rows.deleted(record);
  }
  void added(std::int32_t number) const {
    const std::string lead = lead_of(secondary, number);
    const auto rows = inner_rows(lead, {}, inner(secondary.at(number)));
    for (std::int32_t record = 1; record <= rows.secondary.records(); ++record) rows.added(record);
  }

 private:
  std::string lead_of(const Side<Outer>& side, std::int32_t number) const {
    return ",," + first_cell(side.at(number), number) + ",";
  }
  ItemRows<Inner> inner_rows(std::string_view lead, Side<Inner> one, Side<Inner> other) const {
    return {writer, columns, one, other, lead, lead, tail};
  }
};

}  // namespace trvtrout
