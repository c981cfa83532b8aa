#include <gtest/gtest.h>

#include "tests/spreadsheet/biff8_parts.h"

// What few programs write, or none should: taken where a sheet can be added without harm.
namespace trvtrout::spreadsheet {
namespace {

using namespace std::string_literals;

Sheet second_sheet() {
  Sheet sheet = tests::sheet_of_all_kinds("Two");
  sheet.styles[1].number_format = "0.0000";  // which the workbook hasn't
  return sheet;
}

std::vector<std::uint16_t> types_of(const Globals& globals, std::uint16_t first, std::uint16_t last) {
  std::vector<std::uint16_t> types;
  for (std::size_t index = globals.all(first)[0]; index <= globals.all(last).back(); ++index)
    types.push_back(globals.records[index].type);
  return types;
}

TEST_F(Biff8, OddRecordsAreTaken) {
  const struct {
    const char* what;
    std::function<void(Globals&)> change;
  } kOdd[] = {
      {"more texts claimed than there are",
       [](Globals& globals) {
         Record& table = first_of(globals, kSst);
         table.set32(4, table.u32(4) + 3);
       }},
      {"an empty CONTINUE",
       [](Globals& globals) {
         globals.insert(globals.all(kSst)[0] + 1, {kContinue, ""});
       }},
      {"an empty CONTINUE at the end",
       [](Globals& globals) {
         globals.insert(globals.all(kExtSst)[0], {kContinue, ""});
       }},
      {"a number format one byte short",
       [](Globals& globals) {
         globals.append({kFormat, "\xB0\0\5\0\0yyyy"s});
       }},
      {"a cell format of the number format FFFF",
       [](Globals& globals) {
         Record xf = globals.records[globals.all(kXf).back()];
         xf.set16(2, 0xFFFF);
         globals.append(xf);
       }},
  };
  for (const auto& odd : kOdd) {
    SCOPED_TRACE(odd.what);
    const std::string before = changed(odd.change);
    try {
      const Sheet sheet = second_sheet();
      const std::string after = open_biff8(before)->with_sheet(sheet);
      expect_nothing_else_changed(before, after);
      folder_.put("after", after);
      EXPECT_TRUE(reads_right("-", "after", sheet));
    } catch (const WorkbookError& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

// Programs don't agree in which order the references of both are numbered, so that no new one can be added.
TEST_F(Biff8, OfTwoTablesOfReferencesBothFollowTheSheets) {
  fixtures();
  const std::string before = changed(
      [](Globals& globals) {
        Record& table = first_of(globals, kExternSheet);
        ASSERT_GE(table.u16(0), 2);
        const Record rest{kExternSheet, ByteWriter().u16(table.u16(0) - 1).raw(table.body.substr(8)).take()};
        table.body.resize(8);
        table.set16(0, 1);
        globals.append(rest);
      },
      workbook_stream(fakes::get_file(path("sheets.xls"))));
  Sheet sheet = tests::sheet_of_all_kinds("It's new");
  EXPECT_THROW(open_biff8(before)->with_sheet(sheet), WorkbookError);
  sheet.has_filter = false;
  const std::string after = open_biff8(before)->with_sheet(sheet);
  folder_.put("before.xls", before);
  folder_.put("after.xls", after);
  expect_nothing_else_changed(before, after);
  EXPECT_TRUE(reads_right("before.xls", "after.xls", sheet));
  if (!has_all_programs_) GTEST_SKIP() << "a spreadsheet program is missing";
  EXPECT_TRUE(python("compare_in_programs.py", "before.xls after.xls \"It's new\" --no-filter"));
}

TEST_F(Biff8, AListOfDrawingsGoesOnInOtherRecords) {
  constexpr std::size_t kListEnd = 32;  // of an empty list
  const auto with_clusters = [](std::uint32_t clusters, std::uint16_t further_type) {
    return changed([=](Globals& globals) {
      const std::size_t index = globals.all(kMsoDrawingGroup)[0];
      std::string body = globals.records[index].body;
      const std::uint32_t more = clusters - (get<std::uint32_t>(body, 20) - 1);
      ByteWriter list;
      for (std::uint32_t each = 0; each < more; ++each) list.u32(2 + each / 2).u32(1024);
      body.insert(kListEnd, list.bytes());
      put(body, 4, get<std::uint32_t>(body, 4) + 8 * more);
      put(body, 12, get<std::uint32_t>(body, 12) + 8 * more);
      put(body, 20, clusters + 1);
      globals.set_whole_body(index, body + std::string(20000, 'p'));
      for (std::size_t each = index + 1; each < globals.behind(index); ++each)
        if (each == index + 1) globals.records[each].type = further_type;
    });
  };
  const auto group = [](const std::string& bytes) {
    std::string body;
    for (const Record& record : parts_of(workbook_stream(bytes)).globals.records) {
      if (record.type == kMsoDrawingGroup || (record.type == kContinue && !body.empty())) body += record.body;
      if (record.type == kSst) break;
    }
    return body;
  };
  for (const std::uint32_t clusters : {1022U, 1023U, 1024U, 1025U, 1026U, 2500U}) {
    for (const std::uint16_t type : {kContinue, kMsoDrawingGroup}) {
      SCOPED_TRACE(std::to_string(clusters) + " clusters, then " + std::to_string(type));
      const std::string before = with_clusters(clusters, type);
      try {
        const std::string after = open_biff8(before)->with_sheet(second_sheet());
        const std::string old_group = group(before), new_group = group(after);
        const std::size_t list = std::size_t{8} * clusters, end = kListEnd + list;
        EXPECT_EQ(get<std::uint32_t>(new_group, 20), clusters + 2);
        EXPECT_EQ(get<std::uint32_t>(new_group, 16), (clusters + 1) * 1024 + 2);
        EXPECT_TRUE(new_group.substr(kListEnd, list) == old_group.substr(kListEnd, list));
        EXPECT_GT(get<std::uint32_t>(new_group, end), (clusters - 2) / 2);
        EXPECT_TRUE(new_group.substr(end + 8) == old_group.substr(end));
        for (const Record& record : parts_of(workbook_stream(after)).globals.records)
          EXPECT_LE(record.body.size(), kLargestBody);
      } catch (const WorkbookError& error) {
        ADD_FAILURE() << error.what();
      }
    }
  }
}

// An own book's record stands between no other book's record and what belongs to that.
TEST_F(Biff8, ABookOfOthersKeepsItsNamesAndCells) {
  const std::string before = changed([](Globals& globals) {
    std::erase_if(globals.records, [](const Record& record) {
      return record.type == kSupBook || record.type == kExternSheet || record.type == kName;
    });
    globals.append(
        {kSupBook, ByteWriter().u16(1).u16(5).u8(0).raw("\1b.xls"s.substr(0, 5)).u16(1).u8(0).raw("A").take()});
    globals.append({kExternName, ByteWriter().zeros(6).u8(1).u8(0).raw("n").u16(0).take()});
    globals.append({kXct, ByteWriter().u16(1).u16(0).take()});
    globals.append({kCrn, ByteWriter().u8(0).u8(0).u16(0).u8(1).f64(1).take()});
    globals.append({kExternSheet, ByteWriter().u16(1).u16(0).u16(0).u16(0).take()});
  });
  const std::string after = open_biff8(before)->with_sheet(second_sheet());
  const Globals globals = parts_of(workbook_stream(after)).globals;
  EXPECT_EQ(types_of(globals, kSupBook, kExternSheet),
            (std::vector<std::uint16_t>{kSupBook, kExternName, kXct, kCrn, kSupBook, kExternSheet}));
  EXPECT_EQ(globals.records[globals.all(kSupBook)[1]].body, "\2\0\1\4"s);
  EXPECT_EQ(globals.records[globals.all(kExternSheet)[0]].body, "\2\0\0\0\0\0\0\0\1\0\0\0\0\0"s);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
