#include <gtest/gtest.h>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;

struct Info {
  std::int32_t count = -1, current = -1, max = -1, size = -1;
  std::u16string result;
};

class Accessors : public testing::Test {
 protected:
  // Reads a file with this one section.
  template <class Record>
  void read(std::string_view tag, const Record& record) {
    machine.memory.files[u"a.vtr"] = FileBuilder().section(tag, record).with_end();
    std::u16string name = u"a.vtr", list;
    Boolean secondary = False;
    ASSERT_TRUE(utility.ReadVTR(name, list, secondary));
  }

  Info include_files(std::int32_t max, Array<INCLUDEFILE_ITEM_STRUCT> items) {
    read("IncludeFile", INCLUDEFILE_STRUCT{.Count = 3, .Current = -2, .Max = max, .Items = items});
    Info info;
    info.result = utility.GetInclInfo(info.count, info.current, info.max, info.size);
    EXPECT_EQ(info.count, 3);
    EXPECT_EQ(info.current, -2);
    EXPECT_EQ(info.max, max);
    return info;
  }

  // Items of which those at `used` (from 1) have a name.
  static Array<INCLUDEFILE_ITEM_STRUCT> items(std::size_t slots, std::initializer_list<std::size_t> used,
                                              std::int32_t lower = 1) {
    std::vector<INCLUDEFILE_ITEM_STRUCT> all(slots);
    for (const std::size_t slot : used) all[slot - 1].FileName = text("x");
    return array(all, lower);
  }

  void expect(const Info& info, const char16_t* result, std::int32_t size) {
    EXPECT_EQ(info.result, result);
    EXPECT_EQ(info.size, size);
  }

  fakes::Machine machine;
  TarvelVtrOut_InOut utility{machine.services()};
};

TEST_F(Accessors, RecountStepsBackFromTheEndOfTheArray) {
  expect(include_files(10, items(10, {1, 2, 7})), u"OK", 7);
  expect(include_files(10, items(10, {10})), u"OK", 10);
  expect(include_files(0, items(10, {1})), u"OK", 0);              // the array isn't looked at
  expect(include_files(10, {}), u"ErrInclInfo", 0);                // announced and not there
  expect(include_files(10, items(10, {})), u"ErrInclInfo", 0);     // runs off the lower end
  expect(include_files(10, items(4, {2}, 0)), u"ErrInclInfo", 4);  // index 4 lies behind 0 to 3
  expect(include_files(10, items(4, {3}, 2)), u"OK", 4);           // index 4 is the third of 2 to 5
  expect(include_files(10, items(5, {}, -3)), u"ErrInclInfo", 5);
  expect(include_files(-1, items(2, {1})), u"OK", 1);
}

TEST_F(Accessors, ATreeNodeIsUsedWhenItHasATableOrADescription) {
  TREE_HIERARCHY_STRUCT tree{.Count = 1, .Max = 3};
  tree.Items = array<TREE_HIERARCHY_ITEM_STRUCT>({{}, TREE_HIERARCHY_ITEM_STRUCT{.Tid = text("T")}, {}});
  read("TreeHierarchy", tree);
  Info info;
  EXPECT_EQ(utility.GetTreInfo(info.count, info.current, info.max, info.size), u"OK");
  EXPECT_EQ(info.size, 2);
}

TEST_F(Accessors, FieldsAreCountedOverAllTables) {
  const auto table = [](std::size_t slots, std::size_t used) {
    std::vector<FIELDS_ITEM_STRUCT> fields(slots);
    if (used > 0) fields[used - 1].Fid = text("F");
    TABLES_ITEM_STRUCT item{};
    item.Fields.Max = slots > 0 ? 1 : std::int16_t{0};
    if (slots > 0) item.Fields.Items = array(fields);
    return item;
  };
  const auto count = [&](std::vector<TABLES_ITEM_STRUCT> tables, std::int16_t announced) {
    SCHEMA_STRUCT schema{};
    schema.Tables.Count = announced;
    schema.Tables.Max = 1;
    schema.Tables.Items = array(std::move(tables));
    read("Schema", schema);
    Info info;
    info.result = utility.GetFieldsInfo(info.size);
    return info;
  };
  expect(count({table(10, 8), table(0, 0), table(5, 5)}, 3), u"OK", 13);
  expect(count({table(10, 8), table(5, 0)}, 2), u"ErrFieldInfo", 8);
  expect(count({table(10, 8)}, 2), u"ErrFieldInfo", 8);
  expect(count({table(32'768, 32'768)}, 1), u"ErrFieldInfo", 0);  // more than 16 bits count
}

TEST_F(Accessors, NodesAreCountedUsedOrNot) {
  DATASEND_STRUCT list{.Count = 2};
  list.File.FileHeader = text("head\xFC");
  list.Items = array<DATASEND_ITEM_STRUCT>({{.Count = 1, .Nodes = array(std::vector<DATASEND_NODE_STRUCT>(4))},
                                            {.Count = 0, .Nodes = array(std::vector<DATASEND_NODE_STRUCT>(9))}});
  read("TarvelDefinitionHeader", list);
  Info info;
  std::u16string file, version;
  EXPECT_EQ(utility.GetDsmInfo(info.count, file, version, info.size), u"OK");
  EXPECT_EQ(file, u"head\u00FC");
  EXPECT_EQ(info.size, 4);
  list.Count = 3;
  read("TarvelDefinitionHeader", list);
  EXPECT_EQ(utility.GetDsmInfo(info.count, file, version, info.size), u"ErrDsmInfo");
}

TEST_F(Accessors, TheHeaderDateIsTakenInBothForms) {
  for (const char* form : {"6/1/2004 2:11:05 PM", "2004-06-01 14:11:05"}) {
    const HEADER_STRUCT header{.Modified = text(form), .Version = text("01.02.00")};
    machine.memory.files[u"a.vtr"] = bytes_of(header) + "\x03" + std::string("\0EOF", 4);
    std::u16string name = u"a.vtr", list;
    Boolean secondary = False;
    ASSERT_TRUE(utility.ReadVTR(name, list, secondary));
    Date modified = 0;
    std::int32_t size = 1;
    EXPECT_EQ(utility.GetHedInfo(modified, size), u"OK");
    EXPECT_NEAR(modified, machine.locale.now, 1e-9) << form;
  }
}

}  // namespace
}  // namespace trvtrout::tests
