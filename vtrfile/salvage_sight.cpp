#include "vtrfile/salvage_sight.h"

#include <algorithm>
#include <cstring>

#include "vtrfile/format_version.h"
#include "vtrfile/sections.h"

namespace trvtrout::vtrfile {
namespace {

using Place = Sight::Place;

std::uint64_t left(Place at, Place end) { return static_cast<std::uint64_t>(end - at); }

// The text at `at`; nothing when it doesn't end in front of `end`.
std::optional<std::string_view> text_at(Place at, Place end) {
  if (left(at, end) < 2) return {};
  const std::size_t length = load<std::uint16_t>(at);
  if (length > left(at, end) - 2) return {};
  return std::string_view(reinterpret_cast<const char*>(at) + 2, length);
}

}  // namespace

std::vector<SectionLayout> section_layouts(std::string_view version) {
  const bool old = classify(version) == FormatClass::kOld;
  std::vector<SectionLayout> layouts;
  const auto values = sections_of(DocumentSlots());
  std::size_t place = 0;
  for_each_section([&](const auto& section) {
    const ValueType& type = values[place++].record.type();
    if (old && !section.in_old_format) return;
    const bool old_schema = old && section.tag == kSection<&DocumentSlots::Schema>.tag;
    layouts.push_back({section.tag, &layout_of(old_schema ? old_schema_type() : type, version)});
  });
  return layouts;
}

std::optional<TagPlace> Sight::tag_at(Place at) const {
  const auto name = text_at(at, end_);
  if (!name || name->empty()) return {};
  TagPlace tag{.at = at, .content = at + 2 + name->size()};
  if (*name != kEndTag) {
    const auto known = std::ranges::find(sections_, *name, &SectionLayout::tag);
    if (known == sections_.end()) return {};
    tag.section = static_cast<int>(known - sections_.begin());
  }
  if (left(tag.content, end_) < 2) return tag.section == TagPlace::kEnd ? std::optional(tag) : std::nullopt;
  tag.count = load<std::int16_t>(tag.content);
  tag.content += 2;
  tag.plain = tag.count == 1;
  for (int text = 0; text < 2; ++text) {
    const auto more = text_at(tag.content, end_);
    if (!more) return tag.section == TagPlace::kEnd ? std::optional(tag) : std::nullopt;
    tag.content += 2 + more->size();
    tag.plain = tag.plain && more->empty();
  }
  return tag;
}

Evidence Sight::ended(std::vector<Spot> spots, Place at, Place limit, std::uint32_t items) const {
  spots.back().in_list = false;
  ++spots.back().step;
  Evidence evidence = look(std::move(spots), at, limit);
  evidence.list_items = items;
  return evidence;
}

Evidence Sight::look(std::vector<Spot> spots, Place at, Place limit) const {
  Evidence evidence;
  const std::size_t depth = spots.size();
  std::uint32_t passed = 0;  // items of the list in which the walk began
  Place one_back = nullptr;
  const auto with_end = [&](Place end, std::uint32_t items) {
    Evidence behind = ended(spots, end, limit, items);
    if (spots.size() != depth) behind.list_items = evidence.list_items;
    behind.items += evidence.items;
    behind.unused += evidence.unused;
    return behind;
  };
  while (!spots.empty()) {
    Spot& top = spots.back();
    const bool outermost_list = spots.size() == depth;
    if (top.in_list) {
      if (top.left == 0) {
        if (!top.loose) {
          if (outermost_list && evidence.list_items == Evidence::kNoEnd) evidence.list_items = passed;
          top.in_list = false;
          ++top.step;
          continue;
        }
        if (passed > 0 || !outermost_list) {
          if (Evidence end = with_end(at, passed); end.exact || end.items > evidence.items) return end;
        }
      }
      LayoutWalk::Findings found;
      const Layout& item = *top.layout->steps[top.step].item;
      const Place next = walk_.item(item, at, limit, found);
      if (!next || !found.plausible(item)) {
        if (!top.loose) return evidence;
        Evidence end = top.left == 0 ? Evidence{} : with_end(at, passed);
        if (!end.some() && one_back) {
          if (Evidence earlier = with_end(one_back, passed - 1); earlier.better_than(end)) return earlier;
        }
        return end.better_than(evidence) ? end : evidence;
      }
      one_back = outermost_list ? at : nullptr;
      if (outermost_list) ++passed;
      if (found.texts > 0) ++evidence.items;
      if (found.texts == 0) ++evidence.unused;
      if (top.left > 0) --top.left;
      at = next;
      evidence.reached = at;
      if (evidence.items >= Evidence::kEnoughItems) return evidence;
      continue;
    }
    const std::uint32_t list = top.layout->list_from(top.step);
    LayoutWalk::Findings found;
    at = walk_.steps(*top.layout, top.step, list, at, limit, found);
    if (!at || found.odd) return evidence;
    if (list == top.layout->size()) {
      spots.pop_back();
      one_back = nullptr;
      continue;
    }
    const auto items = walk_.descriptor(at, limit, top.layout->steps[list].item->least_bytes);
    if (!items.items) return evidence;
    at = items.items;
    top.step = list;
    top.in_list = true;
    top.loose = false;
    top.left = items.count;
  }
  evidence.exact = is_border(at);
  evidence.reached = at;
  return evidence;
}

bool Sight::can_rely(const TagPlace& tag) const {
  if (tag.section == TagPlace::kEnd) return tag.plain || tag.content == end_;
  const Layout& layout = *sections_[static_cast<std::size_t>(tag.section)].layout;
  return tag.plain && look({{&layout}}, tag.content, end_).some();
}

const std::vector<TagPlace>& Sight::tags() {
  if (tags_) return *tags_;
  std::vector<TagPlace> all;
  std::vector<bool> relied_on(sections_.size() + 1);
  tags_.emplace();
  for (Place at = begin_; left(at, end_) >= 5; ++at) {
    // The longest name has fewer than 256 bytes, and all of them begin with a letter.
    if (at[1] != 0 || at[2] < 'A') continue;
    const auto tag = tag_at(at);
    if (!tag) continue;
    const bool rely = can_rely(*tag);
    if (rely) relied_on[static_cast<std::size_t>(tag->section) + 1] = true;
    if (rely || tag->plain) {
      all.push_back(*tag);
      all.back().plain = rely;
    }
  }
  // A tag that nothing but its own bytes speaks for is one if there is no better one of its name.
  for (const TagPlace& tag : all) {
    if (tag.plain || !relied_on[static_cast<std::size_t>(tag.section) + 1]) tags_->push_back(tag);
  }
  return *tags_;
}

Place Sight::next_tag(Place at) {
  const auto next = std::ranges::lower_bound(tags(), at, {}, &TagPlace::at);
  return next == tags().end() ? end_ : next->at;
}

}  // namespace trvtrout::vtrfile
