#include <gtest/gtest.h>
#include <map>

#include "tests/support.h"
#include "vtrfile/record_walks.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

// A record as a later version of the format might have it.
struct GROWN_STRUCT {
  Text Key;
  Since<"01.03.00", Text> Remark;
  Since<"01.03.00", Array<Text>> Remarks;
  std::int16_t Count;
  VTR_FIELDS(GROWN_STRUCT, Key, Remark, Remarks, Count)
};

struct FORGETFUL_STRUCT {
  Text Key;
  std::int16_t Count, Max;
  VTR_FIELDS(FORGETFUL_STRUCT, Key, Max)
};

struct REPEATING_STRUCT {
  Text Key;
  std::int16_t Count, Max;
  VTR_FIELDS(REPEATING_STRUCT, Key, Max, Max)
};

struct FORGOTTEN_IN_BASE_STRUCT : GROWN_STRUCT {
  std::int16_t Max;
};

static_assert(names_all_members<GROWN_STRUCT>());
static_assert(!names_all_members<FORGETFUL_STRUCT>());
static_assert(!names_all_members<REPEATING_STRUCT>());
static_assert(!names_all_members<FORGOTTEN_IN_BASE_STRUCT>());

TEST(Records, HaveALaterVersionsMembersInItsFilesAlone) {
  const GROWN_STRUCT whole{text("key"), {text("new")}, {array<Text>({text("a"), text("b")})}, 7};
  for (const std::string_view version : {"01.02.00", "01.03.00", "01.04.00"}) {
    const bool has_it = version >= "01.03.00";
    std::string bytes;
    RecordWriter(bytes, {}, version).write(whole);
    EXPECT_EQ(bytes.size(), has_it ? 5u + 5 + 10 + 3 + 3 + 2 : 5u + 2) << version;

    const auto image = tests::image_of(bytes);
    std::pmr::monotonic_buffer_resource memory;
    RecordReader reader(*image, version);
    GROWN_STRUCT back{};
    reader.read(back, memory);
    EXPECT_TRUE(reader.at_end() && !reader.cut()) << version;
    EXPECT_EQ(back.Key.bytes(), "key") << version;
    EXPECT_EQ(back.Remark.value.bytes(), has_it ? "new" : "") << version;
    EXPECT_EQ(back.Remarks.value.size(), has_it ? 2 : 0) << version;
    EXPECT_EQ(back.Count, 7) << version;
  }
}

// Every section of every sample, bit for bit: spare slots, raw runs, lower bounds and unallocated arrays included.
TEST(Records, WriteBackWhatWasRead) {
  int sections = 0;
  for (const std::string& name : sample_names()) {
    const std::string bytes = sample(name);
    Reading reading;
    reading.read(bytes);
    if (!reading.complete && !reading.damage) continue;  // an unsupported version
    std::map<std::string, SectionPlace> last;            // of two sections with one tag the second remains
    for (const SectionPlace& place : section_places(bytes)) last[place.tag] = place;
    for (const auto& [tag, place] : last) {
      EXPECT_EQ(section_bytes(reading, tag), bytes.substr(place.begin, place.end - place.begin)) << name << " " << tag;
      ++sections;
    }
  }
  EXPECT_GT(sections, 100);
}

TEST(Records, WriteTrueAsMinusOne) {
  std::string node = bytes_of(DATASEND_STRUCT{
      .Count = 1,
      .Items = array<DATASEND_ITEM_STRUCT>(
          {{.Count = 1,
            .Nodes = array<DATASEND_NODE_STRUCT>({{.Visible = Flag{256}, .Var1 = var("\x0B\0\x01\0"s)}})}})});
  EXPECT_NE(node.find("\xFF\xFF"s), std::string::npos);
  EXPECT_NE(node.find("\x0B\0\xFF\xFF"s), std::string::npos);
  EXPECT_EQ(node.find("\x0B\0\x01\0"s), std::string::npos);
}

TEST(Records, RefuseWhatTheFormatDoesNotHaveAndSayWhere) {
  struct Case {
    std::string slot;
    const char* found;
  };
  std::string deep = "\x11\0\x01"s;
  for (int level = 0; level < 40; ++level) deep = "\x0C\x20\x01\0\x01\0\0\0\0\0\0\0"s + deep;
  const Case cases[] = {
      {"\x09\0"s, "variant type 9, which the format doesn't have"},
      {"\0\x20\x01\0\xFF\xFF\xFF\xFF\0\0\0\0"s, "variant type 8192, which the format doesn't have"},
      {"\x08\x40"s, "variant type 16392, which the format doesn't have"},
      {"\x02\x20\x02\0"s, "an array of 2 dimensions"},
      {"\x08\x20\x01\0\xFF\xFF\xFF\xFF\0\0\0\0"s, "an array of 4294967295 elements, more than the file holds"},
      {deep, "variants nested more than 32 deep"},
  };
  for (const Case& c : cases) {
    // The third spare slot of the second item.
    const std::string item = "\x01\0k\0\0"s + std::string(40, '\0');
    const std::string bytes = FileBuilder()
                                  .tag("TarvelFieldMatchHeader")
                                  .raw("\x01\0\x02\0\0\0\x01\0\0\0"s + item + item.substr(0, 9) + c.slot)
                                  .bytes() +
                              std::string(100, '\0');
    Reading reading;
    reading.read(bytes);
    ASSERT_TRUE(reading.damage) << c.found;
    EXPECT_EQ(reading.damage->found(), c.found);
    if (c.slot != deep) {
      EXPECT_EQ(reading.damage->path(), "TarvelFieldMatchHeader/Items[2]/Spare[3]");
      const std::size_t slot = bytes.find(c.slot);
      EXPECT_TRUE(reading.damage->offset() == slot || reading.damage->offset() == slot + 2) << c.found;
    }
    // The item before it is whole, and the one that broke holds what was read of it.
    EXPECT_EQ(reading.current.FieldMatches->Items.at(2).Key.bytes(), "k");
  }
}

}  // namespace
}  // namespace trvtrout::tests
