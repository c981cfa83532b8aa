#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files/local_files.h"
#include "platform/files/path.h"
#include "platform/locale/us_locale.h"
#include "platform/program/areas.h"
#include "platform/program/column_widths.h"
#include "platform/program/edited_sheet.h"
#include "platform/program/sheet_names.h"
#include "platform/program/spreadsheet_program.h"
#include "spreadsheet/text/comma_text.h"
#include "tests/fakes/temporary_folder.h"
#include "workbook/workbook_operations.h"

namespace trvtrout::platform {
namespace {

using namespace spreadsheet;
namespace fs = std::filesystem;

template <class Action>
std::string complaint_of(const Action& action) {
  try {
    action();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

TEST(SheetNames, FollowTheRulesOfTheProgram) {
  const std::vector<std::string> others = {"Sheet1", "\xC3\x84pfel"};
  const std::u16string longest(31, u'n');
  for (const auto& name : {std::u16string(u"Product"), longest, std::u16string(u"it's"), std::u16string(u"Sheet 1")}) {
    EXPECT_EQ(complaint_of([&] { require_sheet_name(name, others); }), "");
  }
  for (const char16_t* name : {u"", u"a:b", u"a\\b", u"a/b", u"a?", u"*", u"[", u"]", u"'a", u"a'", u"history",
                               u"SHEET1", u"äPFEL", u"a\nb"}) {
    EXPECT_NE(complaint_of([&] { require_sheet_name(name, others); }), "") << fs::path(name);
  }
  EXPECT_NE(complaint_of([&] { require_sheet_name(longest + u"n", others); }), "");
}

TEST(Areas, AreReadFromAddressesAndNothingElse) {
  const auto areas = parse_addresses(u"A12,XFD1048576,B:F,N");
  ASSERT_EQ(areas.size(), 4U);
  EXPECT_EQ(areas[0].first_row, 11U);
  EXPECT_EQ(areas[1].last_column, 16383U);
  EXPECT_EQ(areas[1].last_row, 1048575U);
  EXPECT_TRUE(areas[2].is_columns() && areas[2].first_column == 1 && areas[2].last_column == 5);
  EXPECT_TRUE(areas[3].is_columns() && areas[3].last_column == 13);
  for (const char16_t* text : {u"", u"A1,", u"1", u"a1", u"A:B1", u"B:A", u"A99999999999", u"ZZZZZZZZZ", u"A1:A0"}) {
    EXPECT_NE(complaint_of([&] { parse_addresses(text); }), "") << fs::path(text);
  }
}

TEST(EditedSheet, FormatsCellsThatAreThereAndThatAreNot) {
  EditedSheet edited(read_comma_text("a,1\r\n,,6/1/2004\r\n", 2004), {100, 10});
  edited.restyle(parse_addresses(u"B:C"), [](CellStyle& style) { style.number_format = "0"; });
  edited.restyle({edited.columns()}, [](CellStyle& style) { style.left = true; });
  edited.restyle(parse_addresses(u"C5,A1"), [](CellStyle& style) { style.bold = true; });
  EXPECT_NE(complaint_of([&] { edited.restyle(parse_addresses(u"A101"), [](CellStyle&) {}); }), "");
  EXPECT_NE(complaint_of([&] { edited.restyle(parse_addresses(u"K"), [](CellStyle&) {}); }), "");
  const Sheet sheet = edited.finish("S");
  ASSERT_EQ(sheet.rows(), 5U);
  const auto style = [&](std::size_t row, std::size_t column) { return sheet.styles[sheet.row(row)[column].style]; };
  EXPECT_EQ(style(0, 0), (CellStyle{"General", true, true, 0}));
  EXPECT_EQ(style(0, 1), (CellStyle{"0", true, false, 0}));
  EXPECT_EQ(style(1, 2), (CellStyle{"0", true, false, 0}));
  EXPECT_EQ(style(4, 2), (CellStyle{"0", true, true, 0}));
  EXPECT_EQ(sheet.row(4)[2].kind(), CellKind::kBlank);
  EXPECT_TRUE(sheet.row(3).empty());
  EXPECT_EQ(sheet.styles.size(), 5U) << "the plain one and the four that are used";
  EXPECT_EQ(sheet.columns.back().last, 9U);
}

TEST(EditedSheet, RefusesWhatDoesNotFitAndSaysWhere) {
  const SheetLimits limits{3, 3};
  EXPECT_EQ(complaint_of([&] { require_fitting(read_comma_text("a\nb\n,,c\n", 2004), limits); }), "");
  EXPECT_NE(complaint_of([&] { require_fitting(read_comma_text("a\nb\nc\nd", 2004), limits); }).find("4 or more rows"),
            std::string::npos);
  EXPECT_NE(complaint_of([&] { require_fitting(read_comma_text("a\n,,,", 2004), limits); }).find("row 2"),
            std::string::npos);
  // A limit counts characters, not bytes.
  std::string longest;
  for (int count = 0; count < 32767; ++count) longest += "\xC3\xA4";
  EXPECT_EQ(complaint_of([&] { require_fitting(read_comma_text(longest, 2004), limits); }), "");
  EXPECT_NE(complaint_of([&] { require_fitting(read_comma_text(longest + "a", 2004), limits); }).find("32768"),
            std::string::npos);
}

TEST(EditedSheet, DatesOfAWorkbookFrom1904) {
  platform::UsLocale locale;
  Sheet sheet = read_comma_text("6/1/2004,12/31/1903,2/28/1900,0:30:00,38139", 2004);
  count_dates_from_1904(sheet, locale);
  const auto row = sheet.row(0);
  EXPECT_EQ(row[0].number(), 38139 - 1462);
  EXPECT_EQ(row[1].text(), "12/31/1903");
  EXPECT_EQ(row[2].text(), "2/28/1900");
  EXPECT_EQ(row[3].number(), 0.5 / 24);
  EXPECT_EQ(row[4].number(), 38139);
}

TEST(ColumnWidths, SuitWhatIsInTheWayOfReading) {
  const Sheet sheet = read_comma_text(
      "a text that runs over empty cells\r\nshort,a text of 22 characters,x\r\n,6/1/2004 2:11:05 PM\r\n," +
          std::string(500, 'w') + ",x,1234567890123\r\n",
      2004);
  EXPECT_EQ(column_widths(sheet), (std::vector<double>{0, 60, 0, 13}));
}

class Program : public testing::Test {
 protected:
  std::string error_of(const std::string& workbook, const std::u16string& sheet = u"New") {
    const std::u16string target = platform::class_path(workbook), report = platform::class_path(report_);
    const auto failure = output_statistics(program_, {target, report, sheet}, nullptr);
    return failure ? failure->what : "";
  }
  std::string make(const std::string& name, WorkbookFormat format = WorkbookFormat::kOoxml) {
    return folder_.put(name, empty_workbook(format));
  }

  fakes::TemporaryFolder folder_;
  platform::LocalFiles files_;  // whose opening creates what is missing
  platform::UsLocale locale_;
  SpreadsheetProgram program_{files_, locale_};
  std::string report_ = folder_.put("r.CSV", "a,b\r\n1,2\r\n");
};

// Nothing is left behind, rights and links stay, and the sheets stand in the order in which they were added.
TEST_F(Program, SavesInPlace) {
  for (const WorkbookFormat format : {WorkbookFormat::kBiff8, WorkbookFormat::kOoxml}) {
    const std::string path = make("w", format), link = folder_.at("link");
    fs::create_symlink("w", link);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    EXPECT_EQ(error_of(path, u"One"), "");
    EXPECT_EQ(error_of(link, u"Two"), "");
    EXPECT_NE(error_of(path, u"ONE").find("has a sheet \"One\""), std::string::npos);
    EXPECT_EQ(open_workbook(fakes::get_file(path))->sheet_names(), (std::vector<std::string>{"Two", "One"}));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
    fs::remove(link);
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.at("")), {}), 2);
}

TEST_F(Program, WhatFailsLeavesTheWorkbookAsItWas) {
  const std::string path = make("w.xlsx"), before = fakes::get_file(path);
  const auto expect = [&](const std::string& reason, const std::string& name = "w.xlsx",
                          const std::u16string& sheet = u"New") {
    const std::string error = error_of(folder_.at(name), sheet);
    EXPECT_NE(error.find(reason), std::string::npos) << error;
    EXPECT_NE(error.find(name), std::string::npos) << error;
    EXPECT_TRUE(fakes::get_file(path) == before) << reason;
  };
  expect("no such file", "missing.xlsx");
  expect("not a workbook", fs::path(folder_.put("t.xlsx", "text")).filename());
  expect("no sheet can be named", "w.xlsx", u"a/b");
  for (const char* owner : {"~$w.xlsx", ".~lock.w.xlsx#"}) {
    const std::string lock = folder_.put(owner, ""), link = folder_.at("elsewhere/link.xlsx");
    fs::create_directory(folder_.at("elsewhere"));
    fs::create_symlink(path, link);
    expect("a spreadsheet program has it open");
    EXPECT_NE(error_of(link).find("has it open"), std::string::npos);
    fs::remove_all(folder_.at("elsewhere"));
    fs::remove(lock);
  }
  const int held = open(path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  expect("in use by another program");
  close(held);
  report_ = folder_.put("long.csv", std::string(1048577, '\n'));
  expect("takes 1048576");
  report_ = folder_.put("wide.csv", std::string(1000000, ','));
  expect("takes 16384");
  report_ = folder_.at("none.csv");
  EXPECT_NE(error_of(path).find("none.csv\": there is no such file"), std::string::npos);
  EXPECT_FALSE(fs::exists(report_));
  EXPECT_TRUE(fakes::get_file(path) == before);
}

TEST_F(Program, AFolderWithoutRightsIsToldByTheWorkbooksName) {
  if (geteuid() == 0) GTEST_SKIP() << "root may write into any folder";
  const std::string path = make("w.xlsx"), before = fakes::get_file(path);
  fs::permissions(folder_.at(""), fs::perms(0500));
  EXPECT_NE(error_of(path).find("w.xlsx\": the rights to its folder are missing"), std::string::npos);
  fs::permissions(folder_.at(""), fs::perms(0700));
  EXPECT_TRUE(fakes::get_file(path) == before);
}

TEST_F(Program, AChangeByAnotherProgramIsNotLost) {
  const std::string path = make("w.xlsx");
  const auto application = program_.CreateObject(u"Excel.Application");
  application->GetWorkbooks()->Open(platform::class_path(path));
  application->ActiveWorkbook()->GetSheets()->Add();
  folder_.put("w.xlsx", "theirs");
  EXPECT_NE(
      complaint_of([&] { application->ActiveWorkbook()->SaveAs(platform::class_path(path), 1); }).find("meantime"),
      std::string::npos);
  EXPECT_EQ(fakes::get_file(path), "theirs");
}

}  // namespace
}  // namespace trvtrout::platform
