#include <gtest/gtest.h>
#include <map>

#include "tests/support.h"
#include "vtrfile/record_reader.h"
#include "vtrfile/variant.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

template <class Record>
Record read_back(const std::string& bytes, std::pmr::memory_resource& memory,
                 std::vector<std::shared_ptr<const Image>>& images) {
  Record record{};
  images.push_back(image_of(bytes));
  RecordReader(*images.back()).read(record, memory);
  return record;
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

TEST(Records, SmallestFileHas43Bytes) {
  EXPECT_EQ(FileBuilder().with_end(),
            "\0\0\0\0\0\0\x08\0"
            "01.02.00"s +
                std::string(6 + 10, '\0') + "\x03\0EOF\x01\0\0\0\0\0"s);
}

TEST(Records, KeepEveryKindOfVariantInASpareSlot) {
  const std::vector<std::string> variants = {
      "\x01\0"s,
      "\x02\0\x34\x12"s,
      "\x03\0\x01\x02\x03\x04"s,
      "\x04\0\0\0\xC8\x42"s,
      "\x05\0\0\0\0\0\0\0\xF0\x3F"s,
      "\x06\0\x10\x27\0\0\0\0\0\0"s,
      "\x07\0\0\0\0\0\0\xE2\xE2\x40"s,
      "\x08\0\x03\0abc"s,
      "\x0B\0\xFF\xFF"s,
      "\x11\0\x7F"s,
      "\x08\x20\x01\0\x02\0\0\0\0\0\0\0\x01\0x\0\0"s,
      "\x0C\x20\x01\0\x02\0\0\0\xFE\xFF\xFF\xFF\x02\0\x01\0\x0C\x20\x01\0\x01\0\0\0\0\0\0\0\x11\0\x05"s,
      "\x11\x20\0\0"s,
  };
  for (const std::string& variant : variants) {
    const std::string bytes = "\x01\0k\0\0"s + variant + std::string(38, '\0');  // Key, Text1, Spare
    std::pmr::monotonic_buffer_resource memory;
    const std::string whole = "\x01\0\x01\0\0\0\x01\0\0\0"s + bytes + "\x01\0"s + std::string(40, '\0');
    std::vector<std::shared_ptr<const Image>> images;
    EXPECT_EQ(bytes_of(read_back<FIELD_MATCHES_STRUCT>(whole, memory, images)), whole);
  }
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

TEST(Records, ElementsOfAVariantArrayAreFoundByTheirOwnBounds) {
  const Var texts = var("\x08\x20\x01\0\x03\0\0\0\xFF\xFF\xFF\xFF\x01\0a\0\0\x02\0cc"s);
  EXPECT_EQ(Text(element_of(texts, -1).body).bytes(), "a");
  EXPECT_EQ(Text(element_of(texts, 1).body).bytes(), "cc");
  EXPECT_THROW(element_of(texts, 2), SubscriptOutOfRange);
  EXPECT_THROW(element_of(texts, -2), SubscriptOutOfRange);
  const Var mixed = var("\x0C\x20\x01\0\x02\0\0\0\0\0\0\0\x08\0\x02\0xy\x02\0\x07\0"s);
  EXPECT_EQ(load<std::int16_t>(element_of(mixed, 1).body), 7);
  EXPECT_THROW(element_of(var("\x08\x20\0\0"s), 0), SubscriptOutOfRange);
  EXPECT_THROW(element_of(var("\x08\0\x01\0x"s), 0), SubscriptOutOfRange);
}

}  // namespace
}  // namespace trvtrout::tests
