#include <gtest/gtest.h>
#include <map>

#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

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
