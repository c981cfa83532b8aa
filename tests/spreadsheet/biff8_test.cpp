#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "tests/spreadsheet/biff8_parts.h"

// Workbooks that other programs made get a sheet, and other programs read them again.
namespace trvtrout::spreadsheet {
namespace {

TEST_F(Biff8, AWorkbookGetsASheetAndNothingElseInItChanges) {
  for (const std::string& name : fixtures()) {
    SCOPED_TRACE(name);
    const std::string before = fakes::get_file(path(name));
    const auto book = open_biff8(before);
    const Sheet sheet = tests::sheet_of_all_kinds("It's new"), second = tests::sheet_of_all_kinds("Zweites");
    const std::string once = book->with_sheet(sheet);
    const std::string twice = open_biff8(once)->with_sheet(second);
    folder_.put("once", once);
    folder_.put("twice", twice);
    expect_nothing_else_changed(before, once);
    expect_nothing_else_changed(once, twice);
    // xlrd looks for sectors of 4,096 bytes in the wrong place.
    if (name != "sectors-of-4096.xls") {
      EXPECT_TRUE(reads_right(name, "once", sheet));
      EXPECT_TRUE(reads_right("once", "twice", second));
    }

    const auto reopened = open_biff8(twice);
    EXPECT_EQ(reopened->counts_from_1904(), name == "from-1904.xls");
    // The second stands before the first, which stands before the sheet that was active.
    const auto& names = reopened->sheet_names();
    const auto place = static_cast<std::size_t>(std::ranges::find(names, "Zweites") - names.begin());
    ASSERT_LT(place + 2, names.size());
    EXPECT_EQ(names[place + 1], "It's new");
    const Parts parts = parts_of(workbook_stream(before));
    const Record& window = parts.globals.records[parts.globals.all(kWindow1)[0]];
    EXPECT_EQ(place, window.u16(10));
    // What the styles need was there the second time.
    for (const std::uint16_t type : {kFont, kFormat, kXf})
      EXPECT_EQ(parts_of(workbook_stream(once)).globals.all(type).size(),
                parts_of(workbook_stream(twice)).globals.all(type).size());
  }
  if (!has_all_programs_)
    GTEST_SKIP() << "a spreadsheet program is missing; the workbooks of the others came out right";
}

TEST_F(Biff8, AnEmptyWorkbookGetsItsFirstSheets) {
  const auto empty = open_biff8(empty_biff8());
  EXPECT_TRUE(empty->sheet_names().empty());
  const Sheet first = tests::sheet_of_all_kinds("Erstes");
  Sheet full;
  full.name = "Full";
  for (std::size_t row = 0; row < 65536; ++row) {
    // Wide enough for a file that needs a second level of the allocation table.
    for (int column = 0; column < 6; ++column) full.cells.push_back(Cell::number(static_cast<double>(row) + 0.5, 0));
    full.row_ends.push_back(full.cells.size());
  }
  folder_.put("first", empty->with_sheet(first));
  folder_.put("second", open_biff8(fakes::get_file(path("first")))->with_sheet(full));
  EXPECT_TRUE(reads_right("-", "first", first));
  EXPECT_TRUE(reads_right("first", "second", full));
  full.row_ends.push_back(full.cells.size());
  EXPECT_THROW(empty->with_sheet(full), WorkbookError);
}

// Formulas across sheets, names, filters: as two spreadsheet programs see them before and after.
TEST_F(Biff8, SpreadsheetProgramsReadTheSame) {
  fixtures();
  if (!has_all_programs_) GTEST_SKIP() << "a spreadsheet program is missing";
  for (const char* name :
       {"everything.xls", "sectors-of-4096.xls", "mini.xls", "workbook-then-mini.xls", "mini-then-workbook.xls"}) {
    folder_.put("after.xls",
                open_biff8(fakes::get_file(path(name)))->with_sheet(tests::sheet_of_all_kinds("It's new")));
    EXPECT_TRUE(python("compare_in_programs.py", std::string(name) + " after.xls \"It's new\"")) << name;
  }
}

TEST_F(Biff8, RefusesWhatItCannotChangeWithoutHarm) {
  using namespace std::string_literals;
  const std::string good = changed([](Globals&) {});
  ASSERT_NO_THROW(open_biff8(good)->with_sheet(tests::sheet_of_all_kinds("Two")));
  const auto renamed = [&good](std::u16string_view to) { return compound_file_of(to, workbook_stream(good)); };
  const auto first_bound = [](Globals& globals) -> Record& { return first_of(globals, kBoundSheet); };
  const struct {
    std::string bytes;
    const char* reason;
  } kRefused[] = {
      {with_record(kFilePass, "\1\0\1\0\0\0"s), "encrypted"},
      {with_record(kProtect, "\1\0"s), "structure is protected"},
      {with_record(kFileSharing, "\0\0\x34\x12"s), "password before it's changed"},
      {with_record(kRealTimeData, "\0\0"s), "real-time data"},
      {changed([](Globals& globals) { globals.records[0].set16(0, 0x0500); }), "older .xls format"},
      {changed([&](Globals& globals) { first_bound(globals).set32(0, 4); }), "no place of its own"},
      {changed([&](Globals& globals) { first_bound(globals).set32(0, first_bound(globals).u32(0) + 20); }), "no start"},
      {changed([&](Globals& globals) { globals.append(first_bound(globals)); }), "share one place"},
      {changed([](Globals& globals) { globals.records[globals.all(kExtSst)[0] - 1].body += 'x'; }), "table of texts"},
      {changed([](Globals& globals) { globals.records[globals.all(kExtSst)[0] - 1].body.pop_back(); }),
       "half a character"},
      {changed([](Globals& globals) {
         std::erase_if(globals.records, [](const Record& record) { return record.type == kContinue; });
       }),
       "ends early"},
      {changed([](Globals& globals) {
         std::erase_if(globals.records, [](const Record& record) { return record.type == kContinue; });
         first_of(globals, kSst).body.resize(8);
       }),
       "doesn't have"},
      {changed([](Globals& globals) {
         std::erase_if(globals.records, [](const Record& record) { return record.type == kFont; });
       }),
       "no fonts"},
      {changed([](Globals& globals) { globals.records[globals.all(kMsoDrawingGroup)[0]].set32(20, 9999); }),
       "list of drawings"},
      {changed([](Globals& globals) {
         for (int each = 0; each < 4050; ++each) globals.append(globals.records[globals.all(kXf)[0]]);
       }),
       "no room"},
      {renamed(u"Book"), "older .xls format"},
      {renamed(u"EncryptedPackage"), "encrypted"},
      {renamed(u"WordDocument"), "another kind of document"},
      {good.substr(0, good.size() - 600), "cut off"},
      {good.substr(0, 100), "header"},
      {"\x09\0\4\0\2\0\x10\0"s, "older .xls format"},
      {"\x09\2\6\0\0\0\x10\0\0\0"s, "older .xls format"},
      {"\x09\4\6\0\0\0\0\1\0\0"s, "older .xls format"},
      {"\x09\10\x08\0\0\5\5\0\0\0\0\0"s, "older .xls format"},
      {"\x09\0\4\0text"s, "not a workbook"},
  };
  for (const auto& refused : kRefused) {
    try {
      Sheet sheet = tests::sheet_of_all_kinds("Two");
      sheet.styles[1].number_format = "0.0000";
      open_workbook(refused.bytes)->with_sheet(sheet);
      ADD_FAILURE() << "not refused: " << refused.reason;
    } catch (const WorkbookError& error) {
      EXPECT_NE(std::string(error.what()).find(refused.reason), std::string::npos) << error.what();
    }
  }
}

// Extensions of cell formats count only while the checksum over the formats is right.
TEST_F(Biff8, TheChecksumOfCellFormatsFollowsUnlessItWasWrong) {
  const auto with_checksum = [](std::uint32_t checksum) {
    return with_record(kXfCrc, ByteWriter().u16(kXfCrc).zeros(12).u16(16).u32(checksum).bytes());
  };
  const auto record_after = [](const std::string& bytes) {
    Sheet sheet = tests::sheet_of_all_kinds("Two");
    sheet.styles[1].number_format = "0.0000";
    const Parts parts = parts_of(workbook_stream(open_biff8(bytes)->with_sheet(sheet)));
    return parts.globals.records[parts.globals.all(kXfCrc)[0]];
  };
  EXPECT_EQ(record_after(with_checksum(1)).u32(16), 1u);
  std::uint32_t right = 0;
  const Parts parts = parts_of(workbook_stream(with_checksum(1)));
  for (const std::size_t index : parts.globals.all(kXf))
    for (const char byte : parts.globals.records[index].body) {
      right ^= std::uint32_t{static_cast<unsigned char>(byte)} << 24;
      for (int bit = 0; bit < 8; ++bit) right = (right << 1) ^ (right >> 31) * 0xAF;
    }
  const Record after = record_after(with_checksum(right));
  EXPECT_EQ(after.u16(14), parts.globals.all(kXf).size() + 1);
  EXPECT_NE(after.u32(16), right);
}

// A table of 109 sectors is listed in the header, and one of 127 more in each further sector.
TEST_F(Biff8, AnOle2FileKeepsItsStreamWhereTheTableGrows) {
  for (const std::size_t table_sectors : {1U, 109U, 236U}) {
    for (std::size_t missing = 0; missing < 8; ++missing) {
      std::string content((128 * table_sectors - missing) * 512 + missing, 'a');
      const std::string file = compound_file_of(u"Workbook", content);
      ASSERT_TRUE(workbook_stream(file) == content) << table_sectors << " less " << missing;
      content += std::string(5000, 'b');
      ASSERT_TRUE(workbook_stream(CompoundFile(file).with_stream(u"Workbook", content)) == content);
    }
  }
}

TEST_F(Biff8, ADamagedWorkbookIsRefusedOrStaysWhole) {
  std::mt19937 random(7);
  const auto any = [&random](std::size_t below) { return random() % below; };
  const Sheet sheet = tests::sheet_of_all_kinds("It's new");
  int refused = 0, done = 0;
  for (const std::string& name : fixtures()) {
    if (name == "large.xls") continue;
    const std::string whole = fakes::get_file(path(name));
    for (int turn = 0; turn < 120; ++turn) {
      std::string bytes = whole;
      if (turn % 8 == 0) bytes.resize(any(bytes.size()));
      for (std::size_t changes = 1 + any(6); changes > 0 && !bytes.empty(); --changes)
        bytes[any(turn % 2 ? bytes.size() : std::min<std::size_t>(bytes.size(), 4096))] = static_cast<char>(any(256));
      try {
        const std::string after = open_biff8(bytes)->with_sheet(sheet);
        const auto names = open_biff8(after)->sheet_names();
        ASSERT_EQ(names.size(), open_biff8(bytes)->sheet_names().size() + 1) << name << " turn " << turn;
        ++done;
      } catch (const WorkbookError&) {
        ++refused;
      }
    }
  }
  EXPECT_GT(refused, 100);
  EXPECT_GT(done, 100);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
