#include "differences/differences.h"

#include <algorithm>
#include <array>

#include "differences/list_pairs.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/part_read.h"

namespace trvtrout::differences {
namespace {

using vtrfile::MemberType;

// Goes through two values of one type side by side.
class Walk {
 public:
  explicit Walk(const Tell& tell) noexcept : tell_(tell) {}

  // `place` has both values.
  void compare(const Place& place) const;

 private:
  void compare_runs(const Place& run) const;
  void compare_slots(const Place& run) const;
  void compare_lists(const Place& list) const;

  const Tell& tell_;
};

// The element of a list or run; a number of 0 for one that this side doesn't have.
Place element_of(const Place& list, std::uint32_t old_number, std::uint32_t new_number) {
  Place place{.parent = &list, .name = {}, .old_number = old_number, .new_number = new_number};
  place.in_list = list.old_value.kind() == vtrfile::Kind::kArray;
  if (old_number > 0) place.old_value = list.old_value.element(old_number - 1);
  if (new_number > 0) place.new_value = list.new_value.element(new_number - 1);
  return place;
}

void Walk::compare(const Place& place) const {
  switch (place.old_value.kind()) {
    case vtrfile::Kind::kRecord:
      for (const MemberType& member : place.old_value.type().members) {
        compare({.parent = &place,
                 .name = member.name,
                 .old_value = place.old_value.member(member),
                 .new_value = place.new_value.member(member)});
      }
      break;
    case vtrfile::Kind::kRun:
      compare_runs(place);
      break;
    case vtrfile::Kind::kVariantRun:
      compare_slots(place);
      break;
    case vtrfile::Kind::kArray:
      compare_lists(place);
      break;
    default:
      if (!equal(place.old_value, place.new_value)) tell_({Kind::kChanged, place});
  }
}

void Walk::compare_runs(const Place& run) const {
  for (std::uint32_t number = 1; number <= run.old_value.elements(); ++number) {
    compare(element_of(run, number, number));
  }
}

// A run that is all Empty on one side alone is one value.
void Walk::compare_slots(const Place& run) const {
  if (equal(run.old_value, run.new_value)) return;
  if (!run.old_value.run() || !run.new_value.run()) return tell_({Kind::kChanged, run});
  const auto old_slots = slots_of(run.old_value), new_slots = slots_of(run.new_value);
  const vtrfile::ValueType& slot = *run.old_value.type().element;
  for (std::uint32_t place = 0; place < old_slots.size(); ++place) {
    compare({.parent = &run,
             .name = {},
             .old_number = place + 1,
             .new_number = place + 1,
             .old_value = {&old_slots[place], slot},
             .new_value = {&new_slots[place], slot}});
  }
}

void Walk::compare_lists(const Place& list) const {
  const vtrfile::AnyArray& old_array = list.old_value.array();
  const vtrfile::AnyArray& new_array = list.new_value.array();
  if (old_array.allocated() != new_array.allocated() || old_array.lower() != new_array.lower()) {
    return tell_({Kind::kChanged, list});
  }
  if (!old_array.allocated()) return;
  const ListPairs pairs = pair_items(list.old_value, list.new_value);
  const std::uint32_t first = pairs.same_in_front + 1;  // the number of the first item that isn't equal in both

  // Removed items are told where they would stand among those that stay.
  std::uint32_t old_told = 0;
  const auto tell_removed = [&](std::size_t old_end) {
    for (; old_told < old_end; ++old_told) {
      if (pairs.removed_of_old[old_told]) tell_({Kind::kRemoved, element_of(list, first + old_told, 0)});
    }
  };
  for (std::uint32_t place = 0; place < pairs.of_new.size(); ++place) {
    const ListPairs::Partner& partner = pairs.of_new[place];
    if (partner.old_place == ListPairs::kNone) {
      tell_({Kind::kAdded, element_of(list, 0, first + place)});
      continue;
    }
    if (!partner.moved) tell_removed(partner.old_place);
    const Place item = element_of(list, first + partner.old_place, first + place);
    if (partner.moved) tell_({Kind::kMoved, item});
    if (!partner.same) compare(item);
  }
  tell_removed(pairs.removed_of_old.size());
}

std::string path(const Place& place, std::uint32_t Place::*number) {
  std::string text;
  for (const Place* const step : steps_to(place)) {
    if (step->name.empty()) {
      text += '[' + std::to_string(step->*number) + ']';
    } else {
      (text += text.empty() ? "" : "/") += step->name;
    }
  }
  return text;
}

// Members that say how many slots a list has, and which one was used last.
constexpr std::array<std::string_view, 2> kSlotNumbers = {"Max", "Current"};
constexpr std::string_view kSpare = "Spare";

}  // namespace

std::vector<const Place*> steps_to(const Place& place) {
  std::vector<const Place*> steps;
  for (const Place* step = &place; step; step = step->parent) steps.push_back(step);
  std::ranges::reverse(steps);
  return steps;
}

bool Difference::unused() const {
  return (kind == Kind::kRemoved && is_empty(place.old_value)) || (kind == Kind::kAdded && is_empty(place.new_value));
}

Bookkeeping Difference::bookkeeping() const {
  const bool moved_empty = kind == Kind::kMoved && is_empty(place.old_value) && is_empty(place.new_value);
  if (unused() || moved_empty) return Bookkeeping::kUnusedSlot;
  if (std::ranges::find(kSlotNumbers, place.name) != kSlotNumbers.end()) return Bookkeeping::kSlotNumber;
  for (const Place* step = &place; step; step = step->parent) {
    if (step->name == kSpare) return Bookkeeping::kSpare;
  }
  return Bookkeeping::kNone;
}

void find_differences(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document,
                      const Tell& tell) {
  const auto old_sections = sections_of(old_document), new_sections = sections_of(new_document);
  for (std::size_t nth = 0; nth < old_sections.size(); ++nth) {
    Walk(tell).compare({.parent = nullptr,
                        .name = old_sections[nth].tag,
                        .old_value = old_sections[nth].record,
                        .new_value = new_sections[nth].record});
  }
}

void find_header_differences(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document,
                             const Tell& tell) {
  Walk(tell).compare({.parent = nullptr,
                      .name = vtrfile::PartRead::kHeader,
                      .old_value = header_of(old_document),
                      .new_value = header_of(new_document)});
}

std::string old_path(const Place& place) { return path(place, &Place::old_number); }
std::string new_path(const Place& place) { return path(place, &Place::new_number); }

std::string key_of(const Place& place) {
  std::string text;
  for (const Place* const step : steps_to(place)) {
    if (!step->in_list) continue;
    const bool in_old = step->old_number > 0;
    std::string key = key_text(in_old ? step->old_value : step->new_value);
    if (key.empty()) key = std::to_string(in_old ? step->old_number : step->new_number);
    (text += text.empty() ? "" : "/") += key;
  }
  return text;
}

}  // namespace trvtrout::differences
