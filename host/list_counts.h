#pragma once

#include <algorithm>
#include <cstdint>

#include "vtrfile/recount.h"

namespace trvtrout::host {

// The records of a list, counted one by one: a recount of the class tells where the last used slot stands.
struct RecordCount {
  std::int64_t announced = 0;
  std::int64_t used = 0;     // of the slots that the file held
  std::int64_t surplus = 0;  // used slots beyond those announced
  std::int64_t empty = 0;    // slots that the file only announced; nothing of them was in it

  // Used slots that were announced.
  std::int64_t expected() const { return used - surplus; }
  RecordCount& operator+=(const RecordCount& other) {
    announced += other.announced;
    used += other.used;
    surplus += other.surplus;
    empty += other.empty;
    return *this;
  }
};

// Calls visit(item) for each element that the file held; those that it only announced come behind them.
template <class Item, class Visit>
void for_each_held(const vtrfile::Array<Item>& items, Visit&& visit) {
  const std::uint32_t held = items.allocated() ? std::min(items.block().stored, items.block().count) : 0;
  for (std::uint32_t place = 0; place < held; ++place) visit(items.position(place));
}

// `announced`: what the file says, which may be below 0.
template <class Item, class IsUsed>
RecordCount count_records(std::int64_t announced, const vtrfile::Array<Item>& items, IsUsed&& is_used) {
  RecordCount count{.announced = std::max<std::int64_t>(announced, 0)};
  std::int64_t held = 0;
  for_each_held(items, [&](const Item& item) {
    ++held;
    if (is_used(item)) ++count.used;
  });
  count.surplus = std::max<std::int64_t>(count.used - count.announced, 0);
  count.empty = items.size() - held;
  return count;
}

template <class List>
RecordCount count_records(const List& list) {
  return count_records(list.Count, list.Items, [](const auto& item) { return vtrfile::is_used(item); });
}

// The fields of all tables.
RecordCount count_fields(const vtrfile::TABLES_STRUCT& tables);

// No definition and no node has a field that tells whether it's used: each one counts.
RecordCount count_definitions(const vtrfile::DATASEND_STRUCT& definitions);
RecordCount count_nodes(const vtrfile::DATASEND_STRUCT& definitions);

}  // namespace trvtrout::host
