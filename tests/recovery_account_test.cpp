#include <gtest/gtest.h>
#include <random>

#include "tests/recovery_checks.h"
#include "tests/support.h"

// What a recovery says of itself, held to what it did.
namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;
using host::Fate;

constexpr const char16_t* kFile = u"C:\\a.VTR";
constexpr const char16_t* kNew = u"C:\\b.VTR";

class Account : public testing::Test {
 protected:
  // Nothing when the file is refused. The account is held to the rules for all of them.
  std::optional<host::RecoveryAccount> account(const std::string& bytes, const std::string& what) {
    machine.memory.files = {{kFile, bytes}};
    TarvelVtrOut_InOut utility(machine.services());
    std::u16string path = kFile, list;
    Boolean primary = False;
    utility.ReadVTR(path, list, primary);
    gaps = utility.LastRead().gaps;
    auto made = recover_as_command(machine, utility, kNew);
    if (made) {
      const char* fault = fault_of(*made);
      EXPECT_EQ(fault, nullptr) << what << ": " << (fault ? fault : "");
      EXPECT_EQ(made->bytes, bytes.size()) << what;
    }
    return made;
  }
  static const host::KeptPart& part(const host::RecoveryAccount& account, std::string_view name) {
    return *std::ranges::find(account.parts, name, &host::KeptPart::name);
  }

  fakes::Machine machine;
  std::vector<Gap> gaps;
};

std::string flipped(std::string bytes, std::size_t at, std::size_t bit) {
  bytes[at] = static_cast<char>(bytes[at] ^ (1 << bit));
  return bytes;
}

std::string mutated(std::string bytes, std::mt19937& random) {
  const auto any = [&](std::size_t below) { return static_cast<std::size_t>(random() % below); };
  const std::size_t at = any(bytes.size());
  const std::size_t size = std::min(1 + any(300), bytes.size() - at);
  switch (any(6)) {
    case 0:
      return bytes.substr(0, at);
    case 1:
      return bytes.erase(at, size);
    case 2:
      return bytes.insert(at, bytes.substr(at, size));
    case 3:
      return bytes.replace(at, std::min<std::size_t>(size, 4), std::min<std::size_t>(size, 4), '\xFF');
    case 4: {  // of a tag, the name or the count of its records
      const auto places = section_places(bytes);
      if (places.empty()) return bytes;
      const SectionPlace& place = places[any(places.size())];
      const std::size_t name_end = place.tag_begin + 2 + place.tag.size();
      return flipped(bytes, any(2) == 0 ? place.tag_begin + 2 : name_end, any(3));
    }
    default:
      return flipped(bytes, at, any(8));
  }
}

// The file is one section behind the other up to its end tag, and each of them is in the new file.
void expect_all_kept(const std::string& bytes, const std::string& recovered, const std::string& what) {
  Reading before, after;
  before.read(bytes);
  after.read(recovered);
  const auto places = section_places(bytes);
  const std::size_t end = places.empty() ? bytes_of(*before.current.Header).size() : places.back().end;
  EXPECT_EQ(bytes.substr(end, 5), "\3\0EOF"s) << what;
  const bool old_format = before.current.Header->Version.bytes() == "01.00.00";
  for (const SectionPlace& place : places) {
    if (old_format && place.tag == "Schema") continue;  // it has another form
    EXPECT_TRUE(section_bytes(before, place.tag) == section_bytes(after, place.tag)) << what << ' ' << place.tag;
  }
}

TEST_F(Account, NeverSaysMoreThanIsTrueOfAnyDamage) {
  std::mt19937 random(7);
  int whole = 0, lost = 0, passed_over = 0;
  for (const std::string& name : sample_names()) {
    const std::string bytes = sample(name);
    for (int round = 0; round < 120; ++round) {
      const std::string damaged = mutated(bytes, random);
      const std::string what = name + " round " + std::to_string(round);
      const auto made = account(damaged, what);
      if (!made) continue;
      (made->nothing_lost ? whole : lost)++;
      if (!gaps.empty()) {
        EXPECT_FALSE(made->nothing_lost) << what;
        ++passed_over;
      }
      if (made->nothing_lost) expect_all_kept(damaged, machine.memory.files[kNew], what);
    }
  }
  EXPECT_GT(whole, 50);
  EXPECT_GT(lost, 500);
  EXPECT_GT(passed_over, 20);
}

TEST_F(Account, ASectionThatHidesBehindABadTagIsNotFound) {
  std::string bytes = sample("odd/reversed-sections.vtr");
  const auto places = section_places(bytes);
  const auto hidden = std::ranges::find(places, "ControlTag", &SectionPlace::tag);
  bytes[hidden->tag_begin + 2] ^= 0x20;
  const auto made = account(bytes, "");
  ASSERT_TRUE(made);
  ASSERT_EQ(gaps.size(), 1U);
  EXPECT_EQ(gaps[0].begin, hidden->tag_begin);
  EXPECT_EQ(gaps[0].found, "\"controlTag\" where a section tag was expected");
  EXPECT_EQ(part(*made, "ControlTag").fate, Fate::kNotFound);
  EXPECT_FALSE(made->nothing_lost);
}

TEST_F(Account, CountsRecordsOneByOne) {
  const CONTROLTAG_ITEM_STRUCT used{.ControlTag = text("used")}, unused{};
  struct Case {
    std::vector<CONTROLTAG_ITEM_STRUCT> items;
    std::int64_t announced, kept, surplus;
    std::int16_t count;
    Fate fate;
  };
  const Case cases[] = {{{used, unused, used}, 2, 2, 0, 2, Fate::kWhole},
                        {{used, used, used}, 1, 1, 2, 1, Fate::kWhole},
                        {{used}, 7, 1, 0, 7, Fate::kFewer},
                        {{used}, 0, 0, 1, -5, Fate::kWhole},
                        {{unused, unused}, 2, 0, 0, 2, Fate::kEmptied}};
  for (const Case& c : cases) {
    const CONTROLTAG_STRUCT list{c.count, array(c.items), {}};
    const auto made = account(FileBuilder().section("ControlTag", list).with_end(), "");
    ASSERT_TRUE(made);
    const host::KeptPart& tags = part(*made, "ControlTag");
    EXPECT_EQ(tags.fate, c.fate) << c.count;
    EXPECT_EQ(tags.lists[0].announced, c.announced) << c.count;
    EXPECT_EQ(tags.lists[0].kept, c.kept) << c.count;
    EXPECT_EQ(tags.lists[0].surplus, c.surplus) << c.count;
    EXPECT_EQ(made->nothing_lost, c.fate == Fate::kWhole) << c.count;
  }
}

// The record breaks in its last value: all in front of it is kept, but for a schema that was still to be upgraded.
TEST_F(Account, ABrokenRecordKeepsWhatStandsBeforeTheBreak) {
  const auto broken = [](auto record) {
    record.Spare = VarRun<20>(var("\x08\0\x03\0one\x08\0\x03\0two"s + std::string(36, '\0')).at());
    std::string bytes = bytes_of(record);
    bytes[bytes.size() - 36] = '\x63';
    return bytes;
  };
  const auto relation = account(FileBuilder().tag("Relation").raw(broken(RELATION_STRUCT{})).with_end(), "");
  ASSERT_TRUE(relation);
  EXPECT_EQ(part(*relation, "Relation").fate, Fate::kPartlyRead);
  EXPECT_TRUE(machine.memory.files[kNew].find("one\x08\0\x03\0two\0\0"s) != std::string::npos);

  const auto schema = account(FileBuilder("01.00.00").tag("Schema").raw(broken(SCHEMA_STRUCT_OLD1{})).with_end(), "");
  ASSERT_TRUE(schema);
  EXPECT_EQ(part(*schema, "Schema").fate, Fate::kNotCarried);
  EXPECT_EQ(part(*schema, "Schema").kept, 0U);
}

TEST_F(Account, TextsOfATagAreToldWhenTheyGo) {
  SECTION_TAG_STRUCT tag{.Tag = text("DSNList"), .Count = 1, .Text1 = text("lost")};
  const auto made = account(FileBuilder().record(tag).record(DSNMAIN_STRUCT{}).with_end(), "");
  ASSERT_TRUE(made);
  EXPECT_FALSE(part(*made, "DSNList").tag_texts_kept);
  EXPECT_EQ(made->kept + 4, made->bytes);
}

}  // namespace
}  // namespace trvtrout::tests
