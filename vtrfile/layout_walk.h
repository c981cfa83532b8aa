#pragma once

#include <cstdint>
#include <span>

#include "vtrfile/layout.h"

namespace trvtrout::vtrfile {

// A range of bytes in memory.
struct ByteRange {
  const unsigned char* begin = nullptr;
  const unsigned char* end = nullptr;
  std::uint64_t size() const noexcept { return static_cast<std::uint64_t>(end - begin); }
};

// Goes through bytes by a layout, as a reader would, without taking anything on trust: what doesn't lie between `begin`
// and the limit isn't there. Counts its work, so that a search can be given an end.
class LayoutWalk {
 public:
  using Place = const unsigned char*;

  // What was met on the way.
  struct Findings {
    // The first value that no program writes: a control character in a text, a flag that is neither, bytes that
    // couldn't be read. It may be damage, or what the walk meets when it's out of step.
    Place odd = nullptr;
    Place broken = nullptr;      // the value at which the walk broke off
    std::uint32_t texts = 0;     // texts that aren't empty
    std::uint32_t variants = 0;  // variants that aren't
    bool has_key = false;        // a key on the way isn't empty
    bool sound() const noexcept { return !odd && !broken; }
    // An unused slot holds no text.
    bool plausible(const Layout& item) const noexcept { return sound() && (has_key || !item.has_key || texts == 0); }
  };

  // `unreadable`: ranges of which nothing is known, in their order. All of it must outlive the walk.
  LayoutWalk(Place begin, std::span<const ByteRange> unreadable) noexcept;

  // Where the steps from `step` up to `behind` end that begin at `at`; null when they break off, which they do at
  // `limit` at the latest.
  Place steps(const Layout& layout, std::uint32_t step, std::uint32_t behind, Place at, Place limit, Findings& found);
  Place item(const Layout& layout, Place at, Place limit, Findings& found) {
    return steps(layout, 0, layout.size(), at, limit, found);
  }

  // Where a used item ends that begins at `at`, with nothing odd in it; null when there is none.
  Place used_item(const Layout& layout, Place at, Place limit, Findings& found);

  struct Descriptor {
    Place items = nullptr;  // null when no list can begin here
    std::uint32_t count = 0;
    bool allocated = false;
  };
  // What stands at `at` as the start of a list of such items.
  Descriptor descriptor(Place at, Place limit, std::uint64_t least_item_bytes) const noexcept;

  std::uint64_t work() const noexcept { return work_; }

 private:
  Place text(Place at, Place limit, bool key, Findings& found);
  Place variants(Place at, std::uint32_t slots, Place limit, Findings& found);
  Place list(const Layout::Step& step, Place at, Place limit, Findings& found);
  void look_for_unreadable(Place at, Place behind, Findings& found) const;

  Place begin_;
  std::span<const ByteRange> unreadable_;
  std::uint64_t work_ = 0;
};

}  // namespace trvtrout::vtrfile
