#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <random>

#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_file.h"
#include "spreadsheet/biff8/globals.h"
#include "tests/fakes/temporary_folder.h"
#include "tests/spreadsheet/biff8_sheet.h"

// Workbooks that other programs made get a sheet, and other programs read them again.
namespace trvtrout::spreadsheet {
namespace {

using namespace biff8;

constexpr const char* kPython = "/usr/bin/python3 '" SAMPLES "/../tests/spreadsheet/";

class Biff8 : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.at(name); }
  static bool run(const std::string& command) { return std::system(command.c_str()) == 0; }
  bool python(const std::string& script, const std::string& arguments) const {
    return run("cd '" + folder_.at("") + "' && " + kPython + script + "' " + arguments);
  }

  std::vector<std::string> fixtures() {
    EXPECT_TRUE(python("make_biff8_fixtures.py", "."));
    has_all_programs_ = run("command -v soffice ssconvert >/dev/null");
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.at("")))
      if (entry.path().extension() == ".xls") names.push_back(entry.path().filename().string());
    std::ranges::sort(names);
    return names;
  }

  // As xlrd reads it, with what was meant to be in the new sheet.
  bool reads_right(const std::string& before, const std::string& after, const Sheet& sheet) {
    folder_.put("sheet.json", tests::described(sheet).dump());
    return python("check_biff8.py", before + " " + after + " sheet.json");
  }

  fakes::TemporaryFolder folder_;
  bool has_all_programs_ = false;
};

std::string workbook_stream(const std::string& bytes) { return CompoundFile(bytes).stream(u"Workbook"); }

struct Parts {
  Globals globals;
  std::map<std::u16string, std::vector<RecordView>> sheets;  // by name, up to the next sheet or the end
};

Parts parts_of(const std::string& stream) {
  std::size_t end = 0;
  Parts parts{read_globals(stream, end), {}};
  for (const std::size_t index : parts.globals.all(kBoundSheet)) {
    const Record& bound = parts.globals.records[index];
    std::vector<RecordView>& records = parts.sheets[read_text(bound.body, 6, 1)];
    int depth = 0;
    for (std::size_t at = bound.u32(0); records.empty() || depth > 0; at = records.back().end()) {
      records.push_back(record_at(stream, at));
      depth += (records.back().type == kBof) - (records.back().type == kEof);
    }
  }
  return parts;
}

// But for the selection, and for the places in an INDEX, which must lead where they led.
void expect_same_records(const std::vector<RecordView>& before, const std::vector<RecordView>& after,
                         const std::string& stream_before, const std::string& stream_after) {
  ASSERT_EQ(before.size(), after.size());
  for (std::size_t each = 0; each < before.size(); ++each) {
    std::string body(before[each].body);
    ASSERT_EQ(before[each].type, after[each].type);
    if (before[each].type == kWindow2) put(body, 0, static_cast<std::uint16_t>(get<std::uint16_t>(body, 0) & ~0x0600));
    if (before[each].type == kIndex) {
      for (std::size_t at = 12; at < body.size(); at += 4) {
        const auto place = get<std::uint32_t>(body, at);
        if (place == 0) continue;
        const auto new_place = get<std::uint32_t>(after[each].body, at);
        ASSERT_EQ(record_at(stream_before, place).type, record_at(stream_after, new_place).type);
        ASSERT_TRUE(record_at(stream_before, place).body == record_at(stream_after, new_place).body);
        put(body, at, new_place);
      }
    }
    ASSERT_TRUE(body == after[each].body) << "record " << before[each].type << " at " << before[each].at;
  }
}

// What isn't meant to change is there in the same order; `globals` may have more.
void expect_kept(const Globals& before, const Globals& globals) {
  constexpr std::uint16_t kMayChange[] = {kContinue, kWindow1, kBoundSheet, kSupBook,         kExternSheet, kName,
                                          kSst,      kExtSst,  kTabId,      kMsoDrawingGroup, kXfCrc};
  auto at = globals.records.begin();
  for (const Record& record : before.records) {
    if (std::ranges::find(kMayChange, record.type) != std::end(kMayChange)) continue;
    at = std::find_if(at, globals.records.end(),
                      [&](const Record& other) { return other.type == record.type && other.body == record.body; });
    ASSERT_TRUE(at != globals.records.end()) << "record " << record.type << " is gone";
    ++at;
  }
}

void expect_nothing_else_changed(const std::string& before, const std::string& after) {
  const std::string old_stream = workbook_stream(before), new_stream = workbook_stream(after);
  const Parts old_parts = parts_of(old_stream), new_parts = parts_of(new_stream);
  ASSERT_EQ(new_parts.sheets.size(), old_parts.sheets.size() + 1);
  for (const auto& [name, records] : old_parts.sheets)
    expect_same_records(records, new_parts.sheets.at(name), old_stream, new_stream);
  expect_kept(old_parts.globals, new_parts.globals);
  for (const std::u16string_view name : {u"_VBA_PROJECT", u"Summary", u"\5SummaryInformation"}) {
    const CompoundFile old_file(before), new_file(after);
    ASSERT_EQ(old_file.has(name), new_file.has(name));
    if (old_file.has(name)) {
      ASSERT_TRUE(old_file.stream(name) == new_file.stream(name));
    }
  }
}

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
  for (const char* name : {"everything.xls", "sectors-of-4096.xls", "mini.xls"}) {
    folder_.put("after.xls",
                open_biff8(fakes::get_file(path(name)))->with_sheet(tests::sheet_of_all_kinds("It's new")));
    EXPECT_TRUE(python("compare_in_programs.py", std::string(name) + " after.xls \"It's new\"")) << name;
  }
}

// A workbook of one sheet whose globals are changed first.
std::string changed(const std::function<void(Globals&)>& change) {
  const std::string stream = workbook_stream(open_biff8(empty_biff8())->with_sheet(tests::sheet_of_all_kinds("One")));
  std::size_t end = 0;
  Globals globals = read_globals(stream, end);
  const std::size_t old_size = globals.bytes();
  change(globals);
  for (const std::size_t index : globals.all(kBoundSheet))
    globals.records[index].set32(0, globals.records[index].u32(0) + globals.bytes() - old_size);
  std::string bytes;
  for (const Record& record : globals.records) append_record(bytes, record);
  return compound_file_of(u"Workbook", bytes + stream.substr(end));
}

std::string with_record(std::uint16_t type, std::string_view body) {
  return changed([&](Globals& globals) { globals.insert(1, {type, std::string(body)}); });
}

TEST_F(Biff8, RefusesWhatItCannotChangeWithoutHarm) {
  using namespace std::string_literals;
  const std::string good = changed([](Globals&) {});
  ASSERT_NO_THROW(open_biff8(good)->with_sheet(tests::sheet_of_all_kinds("Two")));
  const auto renamed = [&good](std::u16string_view to) { return compound_file_of(to, workbook_stream(good)); };
  const auto first_bound = [](Globals& globals) -> Record& { return globals.records[globals.all(kBoundSheet)[0]]; };
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
      {changed([&](Globals& globals) { first_bound(globals).set32(0, first_bound(globals).u32(0) + 20); }), "no begin"},
      {changed([&](Globals& globals) { globals.append(first_bound(globals)); }), "stand at one place"},
      {changed([](Globals& globals) { globals.records[globals.all(kExtSst)[0] - 1].body += 'x'; }), "table of texts"},
      {changed([](Globals& globals) { globals.records[globals.all(kSst)[0]].set32(4, 1u << 31); }), "ends early"},
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
  };
  for (const auto& refused : kRefused) {
    try {
      Sheet sheet = tests::sheet_of_all_kinds("Two");
      sheet.styles[1].number_format = "0.0000";
      open_biff8(refused.bytes)->with_sheet(sheet);
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
