#include "tests/survivors.h"

#include <algorithm>

#include "tests/support.h"
#include "vtrfile/layout_walk.h"
#include "vtrfile/value_types.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;

// The bytes of an item without its lists and their numbers; nothing for an unused one.
std::optional<std::string> own_bytes(const Layout& layout, std::span<const unsigned char> image) {
  const unsigned char* at = image.data();
  const unsigned char* const end = at + image.size();
  LayoutWalk walk(at, {});
  std::string own;
  LayoutWalk::Findings found;
  for (std::uint32_t step = 0; step < layout.size(); ++step) {
    const unsigned char* const next = walk.steps(layout, step, step + 1, at, end, found);
    if (!next) break;
    const bool number = layout.steps[step].role > Layout::Role::kKey;
    if (layout.steps[step].form != Layout::Form::kList && !number) own.append(at, next);
    at = next;
  }
  return found.has_key || !layout.has_key ? std::optional(own) : std::nullopt;
}

// Calls visit(item's path and own bytes, its bytes in the image) for each used item of each list.
template <class Visit>
void for_each_item(Value value, const std::string& path, const Visit& visit) {
  if (value.kind() == Kind::kRecord) {
    for (const MemberType& member : value.type().members) {
      for_each_item(value.member(member), path + '/' + member.name, visit);
    }
  }
  if (value.kind() != Kind::kArray && value.kind() != Kind::kRun) return;
  for (std::uint32_t place = 0; place < value.elements(); ++place) {
    const Value item = value.element(place);
    if (value.kind() == Kind::kArray && item.kind() == Kind::kRecord) {
      const auto image = value.image_of(place);
      if (const auto own = own_bytes(layout_of(item.type(), "01.02.00"), image)) visit(path + '\n' + *own, image);
    }
    for_each_item(item, path, visit);
  }
}

template <class Visit>
void for_each_item(const DocumentSlots& document, const Visit& visit) {
  for (const SectionValue& section : sections_of(document))
    for_each_item(section.record, std::string(section.tag), visit);
}

}  // namespace

std::optional<Items> items_of(std::string_view bytes) {
  Reading reading;
  reading.read(bytes);
  if (!reading.complete) return {};
  Items items;
  for_each_item(reading.current, [&](const std::string& item, std::span<const unsigned char> image) {
    const auto begin = static_cast<std::size_t>(image.data() - reading.image->begin());
    items[item].push_back({begin, begin + image.size()});
  });
  return items;
}

std::vector<std::string> invented(const Salvaged& salvaged, const Items& whole, const std::vector<Struck>& struck) {
  Reading reading;
  reading.read(std::string_view(reinterpret_cast<const char*>(salvaged.image->begin()), salvaged.image->size()));
  // Where the byte of the struck file stood in the whole one.
  const auto whole_place = [&](std::size_t at) {
    std::size_t moved = at;
    for (const Struck& s : struck) {
      if (at >= s.struck_end) moved += (s.end - s.begin) - (s.struck_end - s.struck_begin);
    }
    return moved;
  };
  std::vector<std::string> all;
  for_each_item(reading.current, [&](const std::string& item, std::span<const unsigned char> image) {
    if (whole.contains(item)) return;
    const auto begin = static_cast<std::size_t>(image.data() - reading.image->begin());
    FileRange from{std::string::npos, 0};
    for (const SalvagedPiece& piece : salvaged.pieces) {
      const std::size_t first = std::max<std::size_t>(begin, piece.at);
      const std::size_t last = std::min<std::size_t>(begin + image.size(), piece.at + piece.from.size());
      if (first >= last) continue;
      from.begin = std::min(from.begin, piece.from.begin + (first - piece.at));
      from.end = std::max(from.end, piece.from.begin + (last - piece.at));
    }
    const std::string path = item.substr(0, item.find('\n'));
    const auto touches = [&](const Struck& s) { return from.begin <= s.struck_end && s.struck_begin <= from.end; };
    if (std::ranges::any_of(struck, touches)) return;
    const std::size_t first = whole_place(from.begin), last = whole_place(from.end - 1) + 1;
    for (auto known = whole.lower_bound(path + '\n'); known != whole.end() && known->first.starts_with(path + '\n');
         ++known) {
      for (const Place& place : known->second) {
        const auto strikes = [&](const Struck& s) { return place.begin < s.end && s.begin < place.end; };
        if (place.begin <= first && last <= place.end && std::ranges::any_of(struck, strikes)) return;
      }
    }
    all.push_back(path + " from " + std::to_string(from.begin) + " to " + std::to_string(from.end));
  });
  return all;
}

std::int64_t common(const Items& one, const Items& other) {
  std::int64_t both = 0;
  for (const auto& [item, places] : one) {
    const auto found = other.find(item);
    if (found != other.end()) both += std::min(std::ssize(places), std::ssize(found->second));
  }
  return both;
}

std::int64_t size_of(const Items& items) {
  std::int64_t all = 0;
  for (const auto& [item, places] : items) all += std::ssize(places);
  return all;
}

}  // namespace trvtrout::tests
