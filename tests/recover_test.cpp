#include <algorithm>
#include <gtest/gtest.h>
#include <optional>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

constexpr const char16_t* kDamaged = u"C:\\Damaged.VTR";
constexpr const char16_t* kRecovered = u"C:\\Recovered.VTR";
constexpr const char* kRecoveredList = "List of recovered structures: \r\n";
constexpr const char* kCorruptedList =
    "List of the structures that were permanently corrupted and couldn't been recovered: \r\n";

// One document, read by a new object and recovered.
class Recover : public testing::Test {
 protected:
  void read(const std::string& bytes) {
    machine.memory.files = {{kDamaged, bytes}};
    message = u"given";
    std::u16string path = kDamaged, list;
    Boolean primary = False;
    utility.emplace(machine.services()).ReadVTR(path, list, primary);
  }
  Boolean recover(std::u16string path = kRecovered) { return utility->RecoverVTR(path, message); }
  // The new file; the test fails when it isn't whole.
  Reading recovered(const std::string& what) {
    Reading reading;
    EXPECT_TRUE(recover()) << what << utility->LastFailure();
    reading.read(machine.memory.files[kRecovered]);
    EXPECT_TRUE(reading.complete) << what;
    return reading;
  }
  // The names in one of the two lists, with a blank behind each.
  std::string listed(const char* title) const {
    const std::string text = text::to_utf8(message);
    std::string names = text.substr(text.find(title) + std::string_view(title).size());
    if (title != kCorruptedList) names.resize(names.find(kCorruptedList) - 2);
    for (std::size_t at = 0; (at = names.find("\r\n")) != std::string::npos;) names.replace(at, 2, " ");
    return names;
  }

  fakes::Machine machine;
  std::optional<TarvelVtrOut_InOut> utility{std::in_place, machine.services()};
  std::u16string message = u"given";
};

// Every sample is cut at every byte; under the sanitizers, which take their time, the large ones at every seventeenth,
// but not at the same ones, and around the end of each section.
TEST_F(Recover, AFileCutAnywhereBringsBackEverySectionThatIsWhole) {
#ifdef __SANITIZE_ADDRESS__
  constexpr std::size_t kStep = 17;
#else
  constexpr std::size_t kStep = 1;
#endif
  std::size_t first = 0;
  for (const std::string& name : sample_names()) {
    if (name == "damaged/sick-lists.vtr") continue;  // sections of it are emptied
    const std::string whole = sample(name);
    auto places = section_places(whole);
    if (name == "plant-old-format.vtr") places.erase(places.begin());  // its schema is upgraded
    std::vector<std::size_t> cuts;
    const std::size_t step = whole.size() < 1000 ? 1 : kStep;
    for (std::size_t cut = ++first % step; cut < whole.size(); cut += step) cuts.push_back(cut);
    for (const SectionPlace& place : places) cuts.insert(cuts.end(), {place.begin, place.end - 1, place.end});
    for (const std::size_t cut : cuts) {
      const std::string what = name + " cut at " + std::to_string(cut);
      read(whole.substr(0, cut));
      const Reading reading = recovered(what);
      if (utility->LastDamage()) expect_sections_before(reading, whole, places, cut, what);
    }
  }
}

TEST_F(Recover, DamageSparesTheSectionsBeforeItWhateverItIs) {
  const std::string whole = sample("dense.vtr");
  const auto places = section_places(whole);
  ASSERT_EQ(places.size(), 14U);
  for (const SectionPlace& place : places) {
    const std::size_t middle = (place.begin + place.end) / 2;
    std::vector<std::string> damaged(5, whole);
    damaged[0][place.tag_begin + 2] ^= 0x20;                            // an unknown tag
    damaged[1].replace(place.begin, 40, std::string(40, '\x7F'));       // counts and variant types out of this world
    damaged[2].replace(middle, 10, "\x01\0\xFF\xFF\xFF\xFF\1\0\0\0"s);  // a list of four thousand million items
    damaged[3].erase(middle, 3);
    damaged[4][middle] ^= 0x10;
    for (const std::string& bytes : damaged) {
      const std::string what = place.tag + ", damage " + std::to_string(&bytes - damaged.data());
      read(bytes);
      expect_sections_before(recovered(what), whole, places, place.tag_begin, what);
    }
  }
}

TEST_F(Recover, TheHeaderSaysWhenAndWhereAndKeepsTheRest) {
  HEADER_STRUCT header{};
  header.Version = text("01.01.00");
  header.FileName = text("old name");
  header.Modified = text("old date");
  header.Text2 = text("kept");
  header.Spare = VarRun<5>(var("\x03\0\x01\x02\x03\x04\0\0\0\0\0\0\0\0"s).at());
  HEADER_STRUCT expected = header;
  expected.Version = text("01.02.00");
  expected.FileName = text("C:\\Recovered.VTR");
  expected.Modified = text("6/1/2004 2:11:05 PM");
  for (const char* created : {"", "once"}) {
    header.Created = text(created);
    expected.Created = *created ? text(created) : expected.Modified;
    read(bytes_of(header) + FileBuilder().with_end().substr(FileBuilder().bytes().size()));
    EXPECT_EQ(bytes_of(*recovered("").current.Header), bytes_of(expected));
    EXPECT_EQ(bytes_of(*utility->CurrentSlots().Header), bytes_of(expected));
  }
}

// Each case breaks some lists by announcing what isn't there, and names those that the two lists of the message lack or
// have beside a healthy document.
TEST_F(Recover, EmptiesAndListsWhatFailsItsTest) {
  SCHEMA_STRUCT no_lookups{}, no_tables{}, no_fields{}, nothing{};
  no_lookups.Lookups.Max = nothing.Lookups.Max = 1;
  no_tables.Tables.Max = nothing.Tables.Max = 1;
  no_fields.Tables = {.Count = 1, .Max = 1};
  no_fields.Tables.Items = array<TABLES_ITEM_STRUCT>({{.Tid = text("t")}});
  TABLES_ITEM_STRUCT broken{.Tid = text("t")};
  broken.Fields.Max = 1;
  no_fields.Tables.Items = array<TABLES_ITEM_STRUCT>({broken});
  HIDETABLES_STRUCT hidden_lookups{}, hidden_tables{}, hidden_fields{.Tables = no_fields.Tables};
  hidden_lookups.Lookups.Count = hidden_lookups.Tables.Max = 1;
  hidden_tables.Tables.Max = 1;
  struct Case {
    const char* what;
    std::string file;
    const char* tag;
    bool emptied;  // else as it was read
    std::string missing, corrupted;
  };
  const auto file = [](const char* tag, const auto& record) { return FileBuilder().section(tag, record).with_end(); };
  const Case cases[] = {
      {"lookups", file("Schema", no_lookups), "Schema", true, "LOOKUPS_STRUCT TABLES_STRUCT FIELDS_STRUCT ",
       "LOOKUPS_STRUCT "},
      {"tables", file("Schema", no_tables), "Schema", true, "TABLES_STRUCT FIELDS_STRUCT ", "TABLES_STRUCT "},
      {"fields", file("Schema", no_fields), "Schema", false, "FIELDS_STRUCT ", "FIELDS_STRUCT "},
      {"hidden lookups", file("Hidden", hidden_lookups), "Hidden", false,
       "HIDEFIELDS_STRUCT HIDETABLES_STRUCT HIDDEN_FIELDS_STRUCT ", "HIDEFIELDS_STRUCT "},
      {"hidden tables", file("Hidden", hidden_tables), "Hidden", true, "HIDETABLES_STRUCT HIDDEN_FIELDS_STRUCT ",
       "HIDETABLES_STRUCT "},
      {"hidden fields", file("Hidden", hidden_fields), "Hidden", false, "HIDDEN_FIELDS_STRUCT ",
       "HIDDEN_FIELDS_STRUCT "},
      {"relation", file("Relation", RELATION_STRUCT{.Relations = {.Count = 1}}), "Relation", true, "Relation ",
       "Relation "},
      {"a list of unused slots", file("ControlTag", CONTROLTAG_STRUCT{1, array<CONTROLTAG_ITEM_STRUCT>({{}}), {}}),
       "ControlTag", true, "CONTROLTAG_STRUCT ", "CONTROLTAG_STRUCT "},
      {"a lower bound", file("DSNList", DSNMAIN_STRUCT{1, array<DSN_ITEM_STRUCT>({{.Key = text("k")}}, 5)}), "DSNList",
       true, "DSNMAIN_STRUCT ", "DSNMAIN_STRUCT "},
  };
  read(FileBuilder().with_end());
  recovered("healthy");
  const std::string healthy = listed(kRecoveredList);
  EXPECT_EQ(std::ranges::count(healthy, ' '), 18);
  for (const Case& c : cases) {
    read(c.file);
    const Reading reading = recovered(c.what);
    std::string expected = healthy;
    expected.erase(expected.find(c.missing), c.missing.size());
    EXPECT_EQ(listed(kRecoveredList), expected) << c.what;
    EXPECT_EQ(listed(kCorruptedList), c.corrupted) << c.what;
    Reading before, empty;
    before.read(c.file);
    EXPECT_EQ(section_bytes(reading, c.tag), section_bytes(c.emptied ? empty : before, c.tag)) << c.what;
  }
  // Lookups that fail keep the tables behind them from being walked: they go out as they were read.
  read(FileBuilder().section("Schema", nothing).with_end());
  EXPECT_EQ(recovered("").current.Schema->Tables.Max, 1);
}

TEST_F(Recover, WritesInPlaceAndAnObjectThatReadNothingToo) {
  machine.memory.files[kRecovered] = std::string(2000, 'x');
  recovered("nothing was read");
  const std::string& bytes = machine.memory.files[kRecovered];
  EXPECT_EQ(bytes.size(), 2000U) << "what is longer keeps its tail";
  EXPECT_EQ(bytes.find("xxx"), bytes.find("EOF") + 3 + 6);
  EXPECT_EQ(message.substr(0, 35), u"given\r\n\r\nList of recovered structur");

  // Tags keep the texts that the last read left in the tag's record.
  SECTION_TAG_STRUCT end{.Tag = text("EOF"), .Text1 = text("one"), .Text2 = text("two")};
  read(FileBuilder().record(end).bytes());
  EXPECT_EQ(bytes_of(*recovered("").current.SectionTag).substr(7), bytes_of(end).substr(7));
}

TEST_F(Recover, EveryFailingCallLeavesTheBeginAndSaysSo) {
  read(sample("plant.vtr"));
  recovered("");
  const std::string whole = machine.memory.files[kRecovered];
  const auto expect_told = [this](std::size_t boxes) {
    ASSERT_EQ(machine.message_box.calls.size(), boxes);
    if (boxes == 0) return;
    EXPECT_EQ(machine.message_box.calls.back().prompt, u"File can not be recovered");
    EXPECT_EQ(machine.message_box.calls.back().title, u"VTR Output");
    EXPECT_EQ(machine.message_box.calls.back().buttons, MessageButtons::kOk);
  };
  message = u"given";
  int call = 0;
  for (bool done = false; !done;) {
    machine.memory.files.erase(kRecovered);
    machine.message_box.calls.clear();
    machine.files.fail_at(++call);
    done = bool(recover());
    EXPECT_EQ(done, call > machine.files.calls());
    EXPECT_EQ(machine.files.open_objects(), 0);
    expect_told(done ? 0 : 1);
    EXPECT_EQ(message == u"given", !done);
    ASSERT_TRUE(whole.starts_with(machine.memory.files[kRecovered])) << "call " << call;
  }
  EXPECT_GT(call, 30) << "a write for each tag and record";
  machine.files.fail_at(0);

  machine.message_box.calls.clear();
  EXPECT_FALSE(recover(u""));
  expect_told(0);
  EXPECT_FALSE(recover(std::u16string(70'000, u'x'))) << "longer than a text can be";
  expect_told(1);
  machine.memory.held.insert(kRecovered);
  EXPECT_FALSE(recover());
  expect_told(2);
}

}  // namespace
}  // namespace trvtrout::tests
