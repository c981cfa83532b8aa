#include <algorithm>
#include <gtest/gtest.h>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"
#include "vtrfile/sections.h"

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

// The line of a section in the list of what was read.
std::string structure_of(std::string_view tag) {
  std::string line;
  for_each_section([&](const auto& section) {
    if (section.tag == tag) line = "\r\n" + std::string(section.structure) + (tag == "Schema" ? "" : "\r\n");
  });
  return line;
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

// A bad sector, or a share that goes away: what came before it counts, and where it begins is told.
TEST(Damage, AFileThatCanBeReadInPartDeliversWhatCame) {
  const std::u16string path = u"C:\\p.vtr";
  for (const char* name : {"plant.vtr", "dense.vtr", "plant-old-format.vtr"}) {
    const std::string whole = sample(name);
    const auto places = section_places(whole);
    std::vector<std::size_t> breaks = {1, whole.size() / 2, whole.size() - 7, whole.size()};
    for (const SectionPlace& place : places)
      breaks.insert(breaks.end(), {place.tag_begin, place.begin + 1, place.end - 1});
    for (const std::size_t bad : breaks) {
      const std::string what = name + (" bad from " + std::to_string(bad));
      fakes::Machine machine;
      machine.memory.files[path] = whole;
      machine.memory.bad_from[path] = bad;
      TarvelVtrOut_InOut utility(machine.services());
      std::u16string fname = path, list = u"given";
      Boolean primary = False;
      const Boolean result = utility.ReadVTR(fname, list, primary);
      EXPECT_EQ(machine.memory.open_objects(), 0) << what;
      if (bad == whole.size()) {
        EXPECT_TRUE(result) << what;
        continue;
      }
      ASSERT_FALSE(result) << what;
      ASSERT_TRUE(utility.LastDamage()) << what;
      EXPECT_EQ(utility.LastDamage()->offset(), bad) << what;
      EXPECT_EQ(utility.LastRead().bytes, whole.size()) << what;
      Reading reading;
      reading.current = utility.CurrentSlots();
      if (!places.empty() && bad > places[0].tag_begin && std::string_view(name) != "plant-old-format.vtr") {
        expect_sections_before(reading, whole, places, bad, what);
      }
      // No section in front of the bad place is called unread, none behind it read.
      const std::string read(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(list.find(u"\r\n\r\n") + 2));
      for (const SectionPlace& place : places) {
        const bool listed = read.find(structure_of(place.tag)) != std::string::npos;
        EXPECT_EQ(listed, place.end <= bad) << what << ' ' << place.tag;
      }
    }
  }
  // Nothing came at all: the file can't be read, which is no damage.
  fakes::Machine machine;
  machine.memory.files[path] = sample("plant.vtr");
  machine.memory.bad_from[path] = 0;
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string fname = path, list;
  Boolean primary = False;
  EXPECT_FALSE(utility.ReadVTR(fname, list, primary));
  EXPECT_FALSE(utility.LastDamage());
  EXPECT_NE(list.find(u"HEADER_STRUCT, SCHEMA_STRUCT, "), list.npos);
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
