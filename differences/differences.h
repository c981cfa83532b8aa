#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/document.h"
#include "vtrfile/value_types.h"

// All differences between two documents, told one after the other. Applied to the old document they give the new one:
// take out the removed and moved items, deepest lists first and highest place first; put in the added and moved ones at
// their places in the new document, outermost lists first and lowest place first; then set each changed value.
namespace trvtrout::differences {

enum class Kind { kChanged, kRemoved, kAdded, kMoved };
inline constexpr std::size_t kKinds = 4;
inline constexpr std::array<const char*, kKinds> kKindNames = {"changed", "removed", "added", "moved"};

// A step on the way from a document to one of its values. Lives as long as the call that tells it.
struct Place {
  const Place* parent;    // null for a section, and for the header
  std::string_view name;  // a section's tag or a member's name; empty for an element
  // Of an element: where it stands in each document, counted from 1; 0 in one that doesn't have it.
  std::uint32_t old_number = 0, new_number = 0;
  vtrfile::Value old_value = {}, new_value = {};
  bool in_list = false;  // an element of an array, not of a fixed run
};

// What a difference is about when it's about nothing that a document says.
enum class Bookkeeping {
  kNone,  // it's about something
  kUnusedSlot,
  kSlotNumber,  // how many slots there are, or which one was used last
  kSpare,       // a value in a spare run
};

struct Difference {
  Kind kind;
  const Place& place;  // has the values; of a moved item both

  // An added or removed item with nothing in it.
  bool unused() const;
  Bookkeeping bookkeeping() const;
  bool is_bookkeeping() const { return bookkeeping() != Bookkeeping::kNone; }
};

using Tell = std::function<void(const Difference& difference)>;

// Calls tell() for each difference between the fourteen sections, in the order in which they are written. Takes time
// and memory linear in the documents but for sorting what isn't equal; both must outlive the call.
void find_differences(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document,
                      const Tell& tell);
// The same for the headers, which no difference between documents is told of.
void find_header_differences(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document,
                             const Tell& tell);

// The steps from a document to the place, which is the last one.
std::vector<const Place*> steps_to(const Place& place);

// "Schema/Tables/Items[3]/Tid": the way to the value in the old and in the new document, whatever lower bounds arrays
// have.
std::string old_path(const Place& place);
std::string new_path(const Place& place);
// The keys of the items on the way, with "/" between them, in the code page of the document; of an item without one,
// its place.
std::string key_of(const Place& place);

}  // namespace trvtrout::differences
