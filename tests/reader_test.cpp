#include <gtest/gtest.h>

#include "tests/support.h"

namespace trvtrout::tests {
namespace {

using namespace vtrfile;
using namespace std::string_literals;

MODULE_STRUCT module_of(std::string_view tag) {
  MODULE_STRUCT module{};
  module.Count = 1;
  module.Items = array<MODULE_ITEM_STRUCT>({MODULE_ITEM_STRUCT{.ControlTag = text(tag)}});
  return module;
}

std::string_view module_tag(const MODULE_STRUCT& module) { return module.Items.at(1).ControlTag.bytes(); }

TEST(Reader, ClassesVersionsAsTexts) {
  EXPECT_EQ(classify("01.00.00"), FormatClass::kOld);
  for (const char* version : {"01.00.01", "01.01.00", "01.01.99", "01.02.00", "01.00.00x"}) {
    EXPECT_EQ(classify(version), FormatClass::kCurrent) << version;
  }
  for (const char* version : {"", "00.99.99", "01.02.01", "01.02.00x", "1.1"}) {
    EXPECT_EQ(classify(version), FormatClass::kUnsupported) << version;
  }
}

TEST(Reader, TakesFiftyTagsAndNotOneMore) {
  FileBuilder file;
  for (int tag = 1; tag < DocumentReader::kMaxTags; ++tag) file.tag("Module", 0);
  Reading reading;
  reading.read(FileBuilder(file).with_end());
  EXPECT_TRUE(reading.complete);

  reading.read(file.tag("Module", 0).with_end());
  ASSERT_TRUE(reading.damage);
  EXPECT_EQ(reading.damage->found(), "more than 50 section tags");
}

TEST(Reader, KeepsTheLastRecordOfASectionAndOfTwoWithOneTag) {
  Reading reading;
  reading.read(FileBuilder().tag("Module", 2).record(module_of("A")).record(module_of("B")).with_end());
  EXPECT_TRUE(reading.complete);
  EXPECT_EQ(module_tag(*reading.current.Module), "B");
  EXPECT_EQ(module_tag(*reading.group.Module), "B");
  reading.read(FileBuilder().section("Module", module_of("C")).section("Module", module_of("D")).with_end());
  EXPECT_EQ(module_tag(*reading.group.Module), "D");

  // A count of 0 or below reads nothing, and what was there stays.
  reading.read(FileBuilder().tag("Module", 0).tag("Module", -3).with_end());
  EXPECT_TRUE(reading.complete);
  EXPECT_EQ(module_tag(*reading.current.Module), "D");

  // A record isn't given up for one that is announced and isn't there.
  reading.read(FileBuilder().tag("Module", 2).record(module_of("E")).bytes());
  EXPECT_FALSE(reading.complete);
  EXPECT_EQ(module_tag(*reading.current.Module), "E");
}

TEST(Reader, TellsWhereTheWalkLostItsWay) {
  Reading reading;
  const std::string before = FileBuilder().section("Module", module_of("A")).bytes();
  reading.read(FileBuilder().section("Module", module_of("A")).section("module", module_of("B")).with_end());
  ASSERT_TRUE(reading.damage);
  EXPECT_EQ(reading.damage->offset(), before.size());
  EXPECT_EQ(reading.damage->path(), "SectionTag[2]");
  EXPECT_EQ(reading.damage->found(), "\"module\" where a section tag was expected");

  reading.read(before);
  ASSERT_TRUE(reading.damage);
  EXPECT_EQ(reading.damage->offset(), before.size());
  EXPECT_EQ(reading.damage->found(), "the file ends here, without its \"EOF\" tag");
  EXPECT_NE(reading.structure_list.find("HEADER_STRUCT\r\nMODULE_STRUCT\r\n\r\nList of"), std::string::npos);
}

TEST(Reader, TakesNoTagThatTheEndOfTheFileMadeOfAnother) {
  Reading reading;
  reading.read(FileBuilder().section("IncludeFile", INCLUDEFILE_STRUCT{.Count = 7}).bytes());
  ASSERT_EQ(reading.current.IncludeFile->Count, 7);
  // "IncludeFileNew", cut behind "IncludeFile", is no further include file section.
  const std::string cut = FileBuilder().bytes() + "\x0E\0IncludeFile"s;
  reading.read(cut);
  EXPECT_EQ(reading.structure_list.find("\r\nINCLUDEFILE_STRUCT"), std::string::npos);
}

TEST(Reader, CutValuesKeepWhatIsThere) {
  MODULE_STRUCT module = module_of("MODULE_TAG");
  const std::string whole = FileBuilder().section("Module", module).bytes();
  Reading reading;
  reading.read(whole.substr(0, whole.find("MODULE_TAG") + 6));
  EXPECT_EQ(module_tag(*reading.current.Module), "MODULE");
  EXPECT_EQ(reading.current.Module->Items.at(1).GlobalAttributes, 0);
  reading.read(FileBuilder().tag("Module").bytes() + "\x05\0"s);
  EXPECT_EQ(reading.current.Module->Count, 0) << "half a number is none";
}

TEST(Reader, AnnouncedItemsAreThereAndEmptyInProportionToTheFile) {
  const std::string begin = FileBuilder().tag("Module").bytes() + "\x02\0\0\0"s;
  const std::string item = bytes_of(module_of("A")).substr(14, std::string::npos);
  Reading reading;
  reading.read(begin + "\x01\0\x10\x27\0\0\x01\0\0\0"s);  // 10,000 items, none of them there
  EXPECT_EQ(reading.damage->found(), "the file ends here, without its \"EOF\" tag");
  EXPECT_EQ(reading.current.Module->Items.size(), 10'000);
  EXPECT_TRUE(reading.current.Module->Items.at(10'000).ControlTag.empty());

  reading.read(begin + "\x01\0\xFF\xFF\xFF\xFF\x01\0\0\0"s + item);
  EXPECT_EQ(reading.damage->path(), "Module/Items");
  EXPECT_NE(reading.damage->found().find("a list of 4294967295 items, of which the file holds "), std::string::npos);
  EXPECT_EQ(module_tag(*reading.current.Module), "A") << "what was whole is delivered";
  EXPECT_LT(reading.current.Module->Items.size(), 10);
}

SCHEMA_STRUCT_OLD1 old_schema() {
  SCHEMA_STRUCT_OLD1 schema{};
  schema.Product.Code = text("OLD");
  schema.Product.Text4 = text("lost");
  schema.Product.Text9 = text("nine");
  schema.Product.Text10 = text("lost");
  schema.Product.Raw4.bytes[0] = 1;
  schema.Text1 = text("lost");
  schema.Tables = {
      .Current = 1, .Count = 1, .Max = 1, .Items = array<TABLES_ITEM_STRUCT>({TABLES_ITEM_STRUCT{.Tid = text("T")}})};
  return schema;
}

TEST(Reader, UpgradesTheOldSchema) {
  Reading reading;
  const std::string old_file =
      FileBuilder("01.00.00").section("Schema", old_schema()).section("Module", module_of("M")).with_end();
  reading.read(old_file);
  ASSERT_TRUE(reading.complete);
  const SCHEMA_STRUCT& fresh = *reading.current.Schema;
  EXPECT_EQ(fresh.Product.Code.bytes(), "OLD");
  EXPECT_EQ(fresh.Product.Text9.bytes(), "nine");
  EXPECT_EQ(fresh.Tables.Items.at(1).Tid.bytes(), "T");
  EXPECT_TRUE(fresh.Product.Text4.empty() && fresh.Product.Text10.empty() && fresh.Text1.empty());
  EXPECT_EQ(fresh.Product.Raw4.bytes[0], 0);
  EXPECT_FALSE(fresh.Product.ProductList.Items.allocated());
  EXPECT_EQ(reading.group.Schema->Product.Code.bytes(), "OLD");
  EXPECT_EQ(module_tag(*reading.current.Module), "M");
  EXPECT_FALSE(reading.group.Module->Items.allocated()) << "only header and schema reach a comparison";
}

TEST(Reader, AnUpgradeLeavesWhatItDoesNotCarryOver) {
  SCHEMA_STRUCT current{};
  current.Product.Code = text("NEW");
  current.Product.Text4 = text("four");
  current.Product.ProductList.Items = array<PRODUCT_LIST_ITEM_STRUCT>({PRODUCT_LIST_ITEM_STRUCT{.Text1 = text("p")}});
  current.Text2 = text("two");
  Reading reading;
  reading.read(FileBuilder().section("Schema", current).with_end());
  for (int round = 0; round < 2; ++round) {
    reading.read(FileBuilder("01.00.00").section("Schema", old_schema()).with_end());
    EXPECT_EQ(reading.current.Schema->Product.Code.bytes(), "OLD");
    EXPECT_EQ(reading.current.Schema->Product.Text4.bytes(), "four");
    EXPECT_EQ(reading.current.Schema->Product.ProductList.Items.at(1).Text1.bytes(), "p");
    EXPECT_EQ(reading.current.Schema->Text2.bytes(), "two");
  }
}

TEST(Reader, TheOldFormatHasTwoTagsLess) {
  Reading reading;
  reading.read(FileBuilder("01.00.00").tag("IncludeFileNew", 0).with_end());
  EXPECT_TRUE(reading.complete) << "an unknown tag without records is passed over";
  EXPECT_EQ(reading.structure_list.find("IMPORT_FILES"), std::string::npos);
  reading.read(FileBuilder("01.00.00").section("Schema", old_schema()).bytes());
  EXPECT_NE(reading.structure_list.find("SCHEMA_STRUCT_OLD1\r\nLOOKUPS_STRUCT\r\nTABLES_STRUCT\r\nFIELDS_STRUCT\r\n"
                                        "\r\nList of the structures that were not sucessfuly read: "
                                        "RELATION_STRUCT, HIDETABLES_STRUCT, TREE_HIERARCHY_STRUCT, "),
            std::string::npos);
  EXPECT_TRUE(reading.structure_list.ends_with("CONTROLTAG_STRUCT, DSNMAIN_STRUCT, EOF"));
}

}  // namespace
}  // namespace trvtrout::tests
