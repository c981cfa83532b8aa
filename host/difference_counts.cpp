#include "host/difference_counts.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "compare/compared_lists.h"

namespace trvtrout::host {
namespace {

using differences::Difference;
using differences::Kind;
using differences::Place;
using vtrfile::Value;

// "Schema/Tables/Items/Fields/Items": the way to a list without the numbers of items.
std::string list_path(const Place& list) {
  std::string path;
  for (const Place* step = &list; step; step = step->parent) {
    if (!step->name.empty()) path = std::string(step->name) + (path.empty() ? "" : "/" + path);
  }
  return path;
}

// Whether the list's own number says that the record with this place, counted from 1, is in use, as the comparisons go
// by it.
bool is_counted(Value list_record, Value list, std::uint32_t number) {
  const std::int64_t index = list.array().lower() + number - 1;
  return index >= 1 && index <= list_record.member("Count").integer();
}

// The value next to `place` on the way from it to its item that the item itself has in memory.
const Place& within(const Place& place, const Place& item) {
  const auto begin = static_cast<const std::byte*>(item.old_value.at());
  const Place* step = &place;
  while (static_cast<const std::byte*>(step->old_value.at()) < begin ||
         static_cast<const std::byte*>(step->old_value.at()) >= begin + item.old_value.type().size) {
    step = step->parent;
  }
  return *step;
}

// Whether the comparison of the list sees a change at `place` within the item: it would tell the old item from one that
// differs in this value alone.
bool tells_apart(const ComparedList& list, const Place& item, const Place& place) {
  const Place& changed = within(place, item);
  const std::size_t size = item.old_value.type().size;
  const auto offset =
      static_cast<const std::byte*>(changed.old_value.at()) - static_cast<const std::byte*>(item.old_value.at());
  std::vector<std::max_align_t> other(size / sizeof(std::max_align_t) + 1);
  std::memcpy(other.data(), item.old_value.at(), size);
  std::memcpy(reinterpret_cast<std::byte*>(other.data()) + offset, changed.new_value.at(),
              changed.old_value.type().size);
  return list.tells_apart(item.old_value.at(), other.data());
}

bool is_compared(const Difference& difference) {
  if (difference.kind == Kind::kMoved) return false;
  const Place* item = &difference.place;
  while (item && !item->in_list) item = item->parent;
  if (!item || !item->parent->parent) return false;
  const Place& list = *item->parent;
  const auto lists = compared_lists();
  const auto found = std::ranges::find(lists, list_path(list), &ComparedList::path);
  if (found == lists.end()) return false;
  const bool in_old = item->old_number > 0, in_new = item->new_number > 0;
  if (in_old && !is_counted(list.parent->old_value, list.old_value, item->old_number)) return false;
  if (in_new && !is_counted(list.parent->new_value, list.new_value, item->new_number)) return false;
  return difference.kind != Kind::kChanged || tells_apart(*found, *item, difference.place);
}

}  // namespace

CountsBesideComparisons differences_beside_comparisons(const vtrfile::DocumentSlots& old_document,
                                                       const vtrfile::DocumentSlots& new_document) {
  CountsBesideComparisons counts;
  differences::find_differences(old_document, new_document, [&](const Difference& difference) {
    counts.all.add(difference);
    if (!is_compared(difference)) counts.beside.add(difference);
  });
  return counts;
}

}  // namespace trvtrout::host
