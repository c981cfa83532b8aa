#include "vtrfile/layout_walk.h"

#include <algorithm>
#include <cstring>

#include "vtrfile/read_error.h"
#include "vtrfile/variant.h"

namespace trvtrout::vtrfile {
namespace {

using Place = LayoutWalk::Place;

// What an exception costs, in steps.
constexpr std::uint64_t kWorkOfException = 50;

bool is_control(unsigned char c) { return c < ' ' && c != '\r' && c != '\n' && c != '\t'; }

std::uint64_t left(Place at, Place limit) { return static_cast<std::uint64_t>(limit - at); }

bool is_odd_flag(Place at) {
  const auto value = load<std::int16_t>(at);
  return value < -1 || value > 1;
}

}  // namespace

LayoutWalk::LayoutWalk(Place begin, std::span<const ByteRange> unreadable) noexcept
    : begin_(begin), unreadable_(unreadable) {}

LayoutWalk::Place LayoutWalk::steps(const Layout& layout, std::uint32_t step, std::uint32_t behind, Place at,
                                    Place limit, Findings& found) {
  const Place first = at;
  for (; step < behind; ++step) {
    const Layout::Step& next = layout.steps[step];
    const Place begin = at;
    ++work_;
    switch (next.form) {
      case Layout::Form::kRaw:
      case Layout::Form::kInteger:
      case Layout::Form::kFloat:
      case Layout::Form::kFlag:
        at = left(at, limit) < next.size ? nullptr : at + next.size;
        if (at && next.form == Layout::Form::kFlag && !found.odd && is_odd_flag(begin)) found.odd = begin;
        break;
      case Layout::Form::kText:
        at = text(at, limit, next.role == Layout::Role::kKey, found);
        break;
      case Layout::Form::kVariants:
        at = variants(at, next.size, limit, found);
        break;
      case Layout::Form::kBytes: {
        const Descriptor bytes = descriptor(at, limit, 1);
        at = bytes.items ? bytes.items + bytes.count : nullptr;
        break;
      }
      case Layout::Form::kList:
        at = list(next, at, limit, found);
        break;
    }
    if (!at) {
      if (!found.broken) found.broken = begin;
      return nullptr;
    }
  }
  if (!unreadable_.empty()) look_for_unreadable(first, at, found);
  return at;
}

LayoutWalk::Place LayoutWalk::used_item(const Layout& layout, Place at, Place limit, Findings& found) {
  // Most places are none by their keys alone.
  at = steps(layout, 0, layout.behind_keys, at, limit, found);
  if (!at || found.odd || (layout.has_key && !found.has_key)) return nullptr;
  at = steps(layout, layout.behind_keys, layout.size(), at, limit, found);
  return at && !found.odd && found.texts > 0 ? at : nullptr;
}

void LayoutWalk::look_for_unreadable(Place at, Place behind, Findings& found) const {
  const auto range = std::ranges::upper_bound(unreadable_, at, {}, &ByteRange::end);
  if (range == unreadable_.end() || range->begin >= behind) return;
  const Place first = std::max(at, range->begin);
  if (!found.odd || first < found.odd) found.odd = first;
}

LayoutWalk::Place LayoutWalk::text(Place at, Place limit, bool key, Findings& found) {
  if (left(at, limit) < 2) return nullptr;
  const std::uint64_t length = load<std::uint16_t>(at);
  if (length == 0) return at + 2;
  if (length > left(at, limit) - 2) return nullptr;
  const Place behind = at + 2 + length;
  if (!found.odd) {
    const Place control = std::find_if(at + 2, behind, is_control);
    if (control != behind) found.odd = at;
    work_ += left(at, control) / 16;
  }
  ++found.texts;
  found.has_key = found.has_key || key;
  return behind;
}

LayoutWalk::Place LayoutWalk::variants(Place at, std::uint32_t slots, Place limit, Findings& found) {
  for (; slots > 0; --slots) {
    if (left(at, limit) < 2) return nullptr;
    const auto tag = load<std::uint16_t>(at);
    if (tag == kVariantEmpty) {
      at += 2;
      continue;
    }
    ++work_;
    ++found.variants;
    if (!is_variant_tag(tag)) return nullptr;
    VariantWalk walk(begin_, limit, 0);
    try {
      at = walk.skip(at);
      work_ += walk.work();
    } catch (const ReadError&) {
      work_ += kWorkOfException + walk.work();
      return nullptr;
    }
    if (!at) return nullptr;
  }
  return at;
}

LayoutWalk::Descriptor LayoutWalk::descriptor(Place at, Place limit, std::uint64_t least_item_bytes) const noexcept {
  constexpr std::uint64_t kBytes = 10;
  if (left(at, limit) < 2) return {};
  const auto dimensions = load<std::uint16_t>(at);
  if (dimensions == 0) return {at + 2, 0, false};
  if (dimensions != 1 || left(at, limit) < kBytes) return {};
  const auto count = load<std::uint32_t>(at + 2);
  const auto lower = load<std::int32_t>(at + 6);
  if (lower < 0 || lower > 1 || count > left(at, limit) / least_item_bytes) return {};
  return {at + kBytes, count, true};
}

LayoutWalk::Place LayoutWalk::list(const Layout::Step& step, Place at, Place limit, Findings& found) {
  const Descriptor items = descriptor(at, limit, step.item->least_bytes);
  at = items.items;
  for (std::uint32_t place = 0; at && place < items.count; ++place) {
    at = steps(*step.item, 0, step.item->size(), at, limit, found);
  }
  return at;
}

}  // namespace trvtrout::vtrfile
