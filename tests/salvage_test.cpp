#include <gtest/gtest.h>

#include "bench/generate_document.h"
#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"
#include "tests/survivors.h"

// What is saved of damaged documents: struck in every way, many times, and the survivors counted.
namespace trvtrout::tests {
namespace {

using vtrfile::FileRange;
using vtrfile::Salvaged;

std::string bytes_of_image(const Salvaged& salvaged) {
  return {reinterpret_cast<const char*>(salvaged.image->begin()), salvaged.image->size()};
}

std::optional<Salvaged> salvaged(std::string_view bytes, const std::vector<FileRange>& unreadable = {}) {
  return vtrfile::salvage(*image_of(bytes), unreadable);
}

// A document with what the counting needs to know of it.
struct Original {
  explicit Original(std::string whole)
      : bytes(std::move(whole)), items(*items_of(bytes)), places(section_places(bytes)) {}

  std::string bytes;
  Items items;
  std::vector<SectionPlace> places;
};

const std::vector<Original>& originals() {
  using bench::generate_document;
  static const std::vector<Original> kAll = [] {
    std::vector<Original> all;
    all.emplace_back(generate_document({.tables = 12,
                                        .fields_per_table = 20,
                                        .lookups = 15,
                                        .tree_nodes = 40,
                                        .language_texts = 60,
                                        .modules = 10,
                                        .definitions = 6,
                                        .nodes_per_definition = 12,
                                        .others = 8,
                                        .seed = 3}));
    for (const char* name : {"plant.vtr", "dense.vtr"}) all.emplace_back(sample(name));
    return all;
  }();
  return kAll;
}

struct Survivors {
  std::int64_t items = 0, kept = 0, sections = 0, same = 0, invented = 0;

  void count(const Original& original, Strike how, int times, std::mt19937& random) {
    std::string damaged = original.bytes;
    const auto struck = strike(damaged, how, times, random);
    const auto saved = salvaged(damaged);
    items += size_of(original.items);
    const std::string what = kStrikeNames[static_cast<std::size_t>(how)] + (" at " + std::to_string(struck[0].begin));
    // A file that is cut within its header holds nothing.
    ASSERT_TRUE(saved || how == Strike::kCut) << what;
    if (!saved) return;
    Reading reading;
    reading.read(bytes_of_image(*saved));
    ASSERT_TRUE(reading.complete) << what;
    kept += common(original.items, *items_of(bytes_of_image(*saved)));
    invented += std::ssize(tests::invented(*saved, original.items, struck));
    for (const SectionPlace& place : original.places) {
      const auto touches = [&](const Struck& s) { return s.begin < place.end && s.end > place.tag_begin; };
      if (std::ranges::any_of(struck, touches)) continue;
      ++sections;
      if (section_bytes(reading, place.tag) == original.bytes.substr(place.begin, place.end - place.begin)) ++same;
    }
  }
  double share_of_sections() const { return 100.0 * static_cast<double>(same) / static_cast<double>(sections); }
  double share_of_items() const { return 100.0 * static_cast<double>(kept) / static_cast<double>(items); }
};

// Strikes each document so often in each way, and prints the figures.
Survivors strike_all(Strike how, int times, int rounds) {
  std::mt19937 random(20040601);
  Survivors survivors;
  for (int round = 0; round < rounds; ++round) {
    for (const Original& original : originals()) survivors.count(original, how, times, random);
  }
  std::printf("%-13s x%d: %6.2f %% of the untouched sections, %6.2f %% of all items, %lld of %lld invented\n",
              kStrikeNames[static_cast<std::size_t>(how)], times, survivors.share_of_sections(),
              survivors.share_of_items(), static_cast<long long>(survivors.invented),
              static_cast<long long>(survivors.kept));
  return survivors;
}

TEST(Salvage, OneDamageCostsWhatItTouches) {
  for (const Strike how : kStrikes) {
    const Survivors survivors = strike_all(how, 1, 60);
    EXPECT_GE(survivors.share_of_sections(), 99.5);
    EXPECT_GE(survivors.share_of_items(), how == Strike::kCut ? 0 : 88);
    EXPECT_EQ(survivors.invented, 0);
  }
}

TEST(Salvage, ThreeDamagesCostWhatTheyTouch) {
  for (const Strike how : kStrikes) {
    const Survivors survivors = strike_all(how, 3, 20);
    EXPECT_GE(survivors.share_of_sections(), 99);
    // Where two damages leave little between them an item may be borne out by chance.
    EXPECT_LE(survivors.invented * 1000, survivors.kept);
    EXPECT_GE(survivors.share_of_items(), how == Strike::kCut ? 0 : 80);
  }
}

TEST(Salvage, AWholeFileIsSavedAsItIs) {
  for (const std::string& name : sample_names()) {
    const std::string whole = sample(name);
    Reading reading;
    reading.read(whole);
    if (!reading.complete || name == "damaged/unknown-section.vtr") continue;
    const auto saved = salvaged(whole);
    ASSERT_TRUE(saved) << name;
    EXPECT_TRUE(saved->unexplained.empty() || name == "odd/module-twice.vtr") << name;
    Reading again;
    again.read(bytes_of_image(*saved));
    for (const SectionPlace& place : section_places(whole)) {
      EXPECT_TRUE(section_bytes(again, place.tag) == section_bytes(reading, place.tag)) << name << ' ' << place.tag;
    }
  }
}

// Every bit of the smallest sample flipped, and each third byte of another one dropped.
TEST(Salvage, NoBitAndNoMissingByteMakesAnItem) {
  std::string smallest = sample("odd/header-and-eof.vtr");
  for (std::size_t bit = 0; bit < 8 * smallest.size(); ++bit) {
    std::string flipped = smallest;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
    const auto saved = salvaged(flipped);
    EXPECT_TRUE(!saved || items_of(bytes_of_image(*saved))->empty()) << "bit " << bit;
  }
  const Original& plant = originals()[1];
  for (std::size_t at = 0; at < plant.bytes.size(); at += 3) {
    std::string damaged = plant.bytes;
    damaged.erase(at, 1);
    const auto saved = salvaged(damaged);
    ASSERT_TRUE(saved) << "byte " << at;
    const std::vector<Struck> struck = {{at, at + 1, at, at}};
    EXPECT_EQ(tests::invented(*saved, plant.items, struck), std::vector<std::string>()) << "byte " << at;
  }
}

TEST(Salvage, ATagThatIsStruckCostsNothingOfItsSection) {
  const Original& plant = originals()[1];
  for (const SectionPlace& place : plant.places) {
    for (const std::size_t lost : {std::size_t{1}, std::size_t{4}, place.tag.size()}) {
      std::string damaged = plant.bytes;
      damaged.erase(place.tag_begin, lost);
      const auto saved = salvaged(damaged);
      ASSERT_TRUE(saved) << place.tag;
      Reading reading;
      reading.read(bytes_of_image(*saved));
      EXPECT_TRUE(section_bytes(reading, place.tag) == plant.bytes.substr(place.begin, place.end - place.begin))
          << place.tag << " without " << lost;
    }
  }
}

TEST(Salvage, TheVersionIsThatOfTheSectionsThatFit) {
  for (const char* name : {"plant.vtr", "plant-old-format.vtr"}) {
    std::string damaged = sample(name);
    const std::string version = name == std::string("plant.vtr") ? "01.02.00" : "01.00.00";
    damaged.replace(damaged.find(version), 2, "\x7f\x01");
    const auto saved = salvaged(damaged);
    ASSERT_TRUE(saved) << name;
    EXPECT_TRUE(saved->version_guessed) << name;
    EXPECT_EQ(saved->version, version);
    EXPECT_TRUE(std::ranges::all_of(saved->sections, &vtrfile::SalvagedSection::whole)) << name;
  }
}

// The header's end and the first sections are gone, so that reading goes on within another one.
TEST(Salvage, WhatIsSavedBehindAStruckHeaderReadsToItsEnd) {
  const std::string whole = sample("dense.vtr");
  for (std::size_t size = 21; size < 4000; size += 97) {
    std::string damaged = whole;
    std::fill_n(damaged.begin() + 21, size, '\0');
    const auto saved = salvaged(damaged);
    ASSERT_TRUE(saved) << size;
    Reading reading;
    reading.read(bytes_of_image(*saved));
    EXPECT_TRUE(reading.complete) << size;
  }
}

TEST(Salvage, OfTwoSectionsTheWholeOneCounts) {
  const std::string whole = sample("plant.vtr");
  const auto& places = originals()[1].places;
  const auto module = *std::ranges::find(places, "Module", &SectionPlace::tag);
  std::string twice = whole;
  std::string broken = whole.substr(module.tag_begin, module.end - module.tag_begin);
  broken.resize(broken.size() - 9);
  twice.insert(module.end, broken);
  const auto saved = salvaged(twice);
  ASSERT_TRUE(saved);
  Reading reading;
  reading.read(bytes_of_image(*saved));
  EXPECT_TRUE(section_bytes(reading, "Module") == whole.substr(module.begin, module.end - module.begin));
  EXPECT_EQ(std::ranges::count(saved->sections, "Module", &vtrfile::SalvagedSection::tag), 2);
}

// Blocks that can't be read cost what stands in them.
TEST(Salvage, BadMediaAreReadOnBehindTheBadBlocks) {
  const std::u16string path = u"C:\\p.vtr";
  const Original& original = originals()[0];
  fakes::Machine machine;
  machine.memory.files[path] = original.bytes;
  machine.memory.bad_range[path] = {40'000, 41'000};
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string fname = path, list;
  Boolean primary = False;
  EXPECT_FALSE(utility.ReadVTR(fname, list, primary));
  EXPECT_FALSE(utility.LastSalvage());
  ASSERT_TRUE(utility.SalvageVTR(fname, primary));
  EXPECT_EQ(machine.memory.open_objects(), 0);
  const auto& saved = utility.LastSalvage();
  ASSERT_TRUE(saved);
  // The rest of the block is given up with it.
  EXPECT_EQ(saved->unreadable, (std::vector<FileRange>{{40'000, 45'056}}));
  EXPECT_EQ(utility.LastRead().bytes, original.bytes.size());
  const auto items = items_of(bytes_of_image(*saved));
  EXPECT_GE(common(original.items, *items) * 100, size_of(original.items) * 88);
  // The document is what was saved, and recovers like any other.
  std::u16string output = u"C:\\new.vtr", message;
  EXPECT_TRUE(utility.RecoverVTR(output, message));
  Boolean secondary = True;
  EXPECT_TRUE(utility.ReadVTR(output, list, secondary));
}

TEST(Salvage, WhatIsNoDocumentGivesNone) {
  EXPECT_FALSE(salvaged(""));
  EXPECT_FALSE(salvaged("no document at all"));
  EXPECT_FALSE(salvaged(std::string(100'000, '\0')));
  fakes::Machine machine;
  machine.memory.files[u"x.vtr"] = std::string(5'000, 'x');
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string fname = u"x.vtr";
  Boolean primary = False;
  EXPECT_FALSE(utility.SalvageVTR(fname, primary));
  EXPECT_EQ(utility.LastFailure(), "no section of a VTR file can be found in it");
}

}  // namespace
}  // namespace trvtrout::tests
