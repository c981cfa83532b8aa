#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support.h"

// Damages every sample in every way that is cheap to name, and counts what survives.
namespace trvtrout::tests {
namespace {

using namespace vtrfile;

// The items of a list in front of the cut are those of the whole file.
template <class Item, class Key>
void expect_items_before(const Array<Item>& items, const Array<Item>& whole, std::string_view image, std::size_t cut,
                         Key key) {
  for (std::int64_t index = 1; index < whole.size(); ++index) {
    const std::string next = std::string(key(whole.at(index + 1)).bytes());
    const std::size_t next_at = image.find(next);
    if (next.empty() || next_at == std::string_view::npos || next_at > cut) break;
    ASSERT_EQ(key(items.at(index)).bytes(), key(whole.at(index)).bytes()) << "cut at " << cut;
  }
}

TEST(Damage, AFileCutAnywhereDeliversWhatWasWhole) {
  for (const std::string& name : sample_names()) {
    const std::string whole = sample(name);
    const auto places = section_places(whole);
    Reading intact;
    intact.read(whole);
    if (!intact.complete && !intact.damage) continue;  // an unsupported version
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
      Reading reading;
      reading.read(std::string_view(whole).substr(0, cut));
      // A file whose last tag has lost what stands behind its name is still complete.
      const bool has_end_tag = intact.complete && cut + 6 >= whole.size();
      ASSERT_EQ(reading.complete, has_end_tag) << name << " cut at " << cut;
      const bool at_border =
          std::ranges::any_of(places, [&](const SectionPlace& p) { return cut == p.end || cut == p.begin + 1; });
      if (at_border) expect_sections_before(reading, whole, places, cut, name + " cut at " + std::to_string(cut));
      if (cut % 16 == 0 && !places.empty() && places[0].tag == "Schema" && intact.complete) {
        const auto tid = [](const TABLES_ITEM_STRUCT& table) { return table.Tid; };
        if (cut > places[0].begin) {
          expect_items_before(reading.current.Schema->Tables.Items, intact.current.Schema->Tables.Items, whole, cut,
                              tid);
        }
      }
    }
  }
}

TEST(Damage, AFlippedBitEndsInAResultAndSparesTheSectionsBefore) {
  for (const char* name : {"odd/header-and-eof.vtr", "damaged/no-eof.vtr", "dense-next.vtr"}) {
    const std::string whole = sample(name);
    const auto places = section_places(whole);
    // Every bit of the smallest file, and of the others one bit of each byte, a different one from byte to byte.
    const std::size_t step = whole.size() < 1000 ? 1 : 9;
    std::string flipped = whole;
    for (std::size_t bit = 0; bit < 8 * whole.size(); bit += step) {
      const std::size_t at = bit / 8;
      flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit % 8));
      Reading reading;
      reading.read(flipped);
      const bool unsupported = !reading.complete && !reading.damage;
      if (unsupported) {
        ASSERT_EQ(classify(reading.current.Header->Version.bytes()), FormatClass::kUnsupported)
            << name << " bit " << bit;
      } else {
        expect_sections_before(reading, whole, places, at, name + (" bit " + std::to_string(bit)));
      }
      flipped[at] = whole[at];
    }
  }
}

}  // namespace
}  // namespace trvtrout::tests
