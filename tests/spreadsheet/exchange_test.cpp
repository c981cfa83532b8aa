#include <random>

#include "spreadsheet/ooxml/ooxml_workbook.h"
#include "tests/spreadsheet/biff8_parts.h"

// A sheet that was added before gets new content: the workbook is then what it would be had that been added at once.
namespace trvtrout::spreadsheet {
namespace {

const std::vector<SheetMark> kMarks = {{0, "Ταρβ"}, {1, "second"}};

// Has a mark; not as many cells of other kinds, and texts that the workbook has as well as ones that it hasn't.
Sheet other_sheet(const std::string& name, bool has_filter = true) {
  Sheet sheet;
  sheet.name = name;
  sheet.has_filter = has_filter;
  const auto percent = sheet.style_number({.number_format = "0.00%", .bold = true, .color_index = 5});
  sheet.columns = {{0, 0, percent, 7}, {1, 16383, 0, 0}};
  sheet.cells = {Cell(),
                 Cell::text("second of all", 0),
                 Cell::number(0.5, percent),
                 Cell::text("3 yyy", 0),
                 Cell::text(sheet.texts.emplace_back("0 \xCE\xA9\xCE\xA8"), percent),
                 Cell::boolean(true, 0)};
  sheet.row_ends = {3, 3, 6};
  return sheet;
}

std::size_t place_of(const WorkbookFile& book, const std::string& name) {
  const auto& names = book.sheet_names();
  return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
}

std::string exchanged(const std::string& bytes, const Sheet& sheet) {
  const auto book = open_workbook(bytes);
  const std::vector<std::string> names = book->sheet_names();
  std::string after = book->with_content(place_of(*book, sheet.name), sheet, kMarks);
  EXPECT_EQ(open_workbook(after)->sheet_names(), names);
  return after;
}

std::size_t count(const std::string& bytes, std::uint16_t type) {
  return parts_of(workbook_stream(bytes)).globals.all(type).size();
}

TEST_F(Biff8, ASheetGetsNewContentAndNothingElseInItsWorkbookChanges) {
  for (const std::string& name : fixtures()) {
    SCOPED_TRACE(name);
    const std::string before = fakes::get_file(path(name));
    const Sheet first = tests::sheet_of_all_kinds("It's new"), second = other_sheet("It's new");
    const std::string added = open_biff8(before)->with_sheet(first);
    const std::string once = exchanged(added, second), back = exchanged(once, first);
    for (const auto& [after, sheet] : {std::pair(&once, &second), {&back, &first}}) {
      folder_.put("exchanged", *after);
      expect_nothing_else_changed(before, *after);
      if (name != "sectors-of-4096.xls") {
        EXPECT_TRUE(reads_right(name, "exchanged", *sheet));
      }
      for (const std::uint16_t type : {kName, kBoundSheet, kExternSheet, kSupBook})
        EXPECT_EQ(count(*after, type), count(added, type));
      const auto group = [](const std::string& bytes) {
        const Globals globals = parts_of(workbook_stream(bytes)).globals;
        return globals.whole_body(globals.all(kMsoDrawingGroup).at(0));
      };
      EXPECT_TRUE(group(*after) == group(added));
    }
    // A workbook that gets a report each week doesn't grow by each of them.
    EXPECT_TRUE(exchanged(once, second) == once);
  }
}

TEST_F(Biff8, AFilterComesAndGoes) {
  const std::string with = open_biff8(empty_biff8())->with_sheet(other_sheet("One"));
  const std::string without = exchanged(with, other_sheet("One", false));
  const auto types = [](const std::string& bytes) {
    std::map<std::uint16_t, int> all;
    const std::string stream = workbook_stream(bytes);
    const auto parts = parts_of(stream);
    for (const RecordView& record : parts.sheets.at(u"One")) ++all[record.type];
    return all;
  };
  EXPECT_EQ(types(without).count(kObj) + types(without).count(kAutoFilterInfo), 0U);
  EXPECT_EQ(types(without)[kMsoDrawing], 1) << "the layer keeps its numbers";
  EXPECT_TRUE(exchanged(without, other_sheet("One")) == with);

  const std::string plain = open_biff8(empty_biff8())->with_sheet(other_sheet("One", false));
  folder_.put("filtered", exchanged(plain, other_sheet("One")));
  EXPECT_TRUE(reads_right("-", "filtered", other_sheet("One")));

  const std::string package = open_ooxml(empty_ooxml())->with_sheet(other_sheet("One", false));
  const std::string filtered = exchanged(package, other_sheet("One"));
  EXPECT_TRUE(exchanged(exchanged(filtered, other_sheet("One", false)), other_sheet("One")) ==
              exchanged(filtered, other_sheet("One")));
}

// How somebody views and prints a sheet is theirs.
TEST_F(Biff8, ViewAndPageStay) {
  const std::string added = open_biff8(empty_biff8())->with_sheet(other_sheet("One"));
  std::string stream = workbook_stream(added);
  const auto before_parts = parts_of(stream);
  for (const RecordView& record : before_parts.sheets.at(u"One")) {
    if (record.type == kSetup) put<std::uint16_t>(stream, record.at + kRecordHead + 2, 77);
    if (record.type == kWindow2) put<std::uint16_t>(stream, record.at + kRecordHead, 0x06BE);
  }
  const std::string after = workbook_stream(exchanged(compound_file_of(u"Workbook", stream), other_sheet("One")));
  const auto after_parts = parts_of(after);
  for (const RecordView& record : after_parts.sheets.at(u"One")) {
    if (record.type == kSetup) {
      EXPECT_EQ(get<std::uint16_t>(record.body, 2), 77);
    }
    if (record.type == kWindow2) {
      EXPECT_EQ(get<std::uint16_t>(record.body, 0), 0x06BE);
    }
  }
}

TEST_F(Biff8, ADamagedSheetIsNotExchangedOrItsWorkbookStaysWhole) {
  std::mt19937 random(11);
  const auto any = [&random](std::size_t below) { return random() % below; };
  int refused = 0, done = 0;
  for (const WorkbookFormat format : {WorkbookFormat::kBiff8, WorkbookFormat::kOoxml}) {
    const std::string whole = open_workbook(empty_workbook(format))->with_sheet(other_sheet("One"));
    for (int turn = 0; turn < 600; ++turn) {
      std::string bytes = whole;
      for (std::size_t changes = 1 + any(3); changes > 0; --changes)
        bytes[any(bytes.size())] = static_cast<char>(any(256));
      try {
        const auto book = open_workbook(bytes);
        const std::vector<std::string> names = book->sheet_names();
        if (names.empty()) continue;
        ASSERT_EQ(open_workbook(book->with_content(0, other_sheet("One"), kMarks))->sheet_names(), names) << turn;
        ++done;
      } catch (const WorkbookError&) {
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, 100);
  EXPECT_GT(done, 100);
}

// Sheets that the program didn't make, and ones that have something of somebody's in them: see the script.
TEST_F(Biff8, WhatWouldBeLostIsRefusedWithTheReason) {
  for (const WorkbookFormat format : {WorkbookFormat::kBiff8, WorkbookFormat::kOoxml})
    folder_.put(format == WorkbookFormat::kBiff8 ? "good.xls" : "good.xlsx",
                open_workbook(empty_workbook(format))->with_sheet(other_sheet("One")));
  ASSERT_TRUE(python("make_owned_sheets.py", "."));
  std::size_t refused = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.at(""))) {
    const std::string name = entry.path().filename().string();
    if (!entry.is_regular_file() || name.find('=') == std::string::npos) continue;
    const auto book = open_workbook(fakes::get_file(entry.path()));
    try {
      book->require_exchangeable(place_of(*book, "One"), kMarks);
      EXPECT_EQ(name.find("nothing"), 0U) << name;
      const std::string after = book->with_content(place_of(*book, "One"), other_sheet("One"), kMarks);
      EXPECT_NO_THROW(exchanged(after, other_sheet("One"))) << name;
    } catch (const WorkbookError& error) {
      const std::string what = name.substr(0, name.find('='));
      EXPECT_NE(std::string(error.what()).find(what), std::string::npos) << name << ": " << error.what();
      EXPECT_THROW(book->with_content(place_of(*book, "One"), other_sheet("One"), kMarks), WorkbookError) << name;
      ++refused;
    }
  }
  EXPECT_GE(refused, 14U);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
