#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "vtrfile/image.h"
#include "vtrfile/layout_walk.h"

namespace trvtrout::vtrfile {

// The sections of a file of one version, by their layouts.
struct SectionLayout {
  std::string_view tag;
  const Layout* layout;
};
std::vector<SectionLayout> section_layouts(std::string_view version);

// A section tag as it stands in a file.
struct TagPlace {
  static constexpr int kEnd = -1;  // the tag at a file's end

  const unsigned char* at = nullptr;
  const unsigned char* content = nullptr;  // behind the tag
  int section = kEnd;                      // place in the section layouts
  std::int16_t count = 0;
  bool kept = true;    // count and texts can be taken as they are
  bool plain = false;  // one record and no texts, as every tag is written
};

// Where a walk stands in a record: in the list at `step`, with `left` items to come, or in front of that step.
struct Spot {
  const Layout* layout;
  std::uint32_t step = 0;
  bool in_list = false;
  bool loose = false;  // whether `left` may be wrong, because items were lost
  std::uint32_t left = 0;
};

// What speaks for a place at which reading could go on.
struct Evidence {
  static constexpr std::uint32_t kNoEnd = ~std::uint32_t{0};

  std::uint32_t items = 0;            // whole items, one after the other, that hold a text
  std::uint32_t unused = 0;           // unused slots among them, for which zeros may be taken
  bool exact = false;                 // the record ended where a known tag stands or the file ends
  std::uint32_t list_items = kNoEnd;  // items up to the end of the list in which the walk began; kNoEnd: not reached
  const unsigned char* reached = nullptr;  // where it breaks off, or was enough

  static constexpr std::uint32_t kSomeItems = 3, kEnoughItems = 12;
  // Zeros alone are no evidence of items.
  bool some() const noexcept { return exact ? items > 0 || unused == 0 : items >= kSomeItems; }
  bool enough() const noexcept { return exact ? some() : items >= kEnoughItems; }
  bool better_than(const Evidence& other) const noexcept {
    if (exact != other.exact) return exact;
    return unused != other.unused ? unused < other.unused : items > other.items;
  }
};

// Looks ahead in a file, of which nothing is taken yet.
class Sight {
 public:
  using Place = const unsigned char*;

  // All of it must outlive the sight.
  Sight(const Image& image, LayoutWalk& walk, const std::vector<SectionLayout>& sections)
      : begin_(image.begin()), end_(image.end()), walk_(walk), sections_(sections) {}

  std::optional<TagPlace> tag_at(Place at) const;
  // Whether a section can end here: at a known tag, or at the end of the file.
  bool is_border(Place at) const { return at == end_ || tag_at(at).has_value(); }
  // What speaks for it that the walk that stands at `spots`, the outermost record first, goes on at `at`.
  Evidence look(std::vector<Spot> spots, Place at, Place limit) const;
  // The tags that can be relied upon, in the order of the file. Found at the first call.
  const std::vector<TagPlace>& tags();
  // The first of them at `at` or behind; the end of the file when there is none.
  Place next_tag(Place at);

 private:
  Evidence ended(std::vector<Spot> spots, Place at, Place limit, std::uint32_t items) const;
  bool can_rely(const TagPlace& tag) const;

  Place begin_, end_;
  LayoutWalk& walk_;
  const std::vector<SectionLayout>& sections_;
  std::optional<std::vector<TagPlace>> tags_;
};

}  // namespace trvtrout::vtrfile
