#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_file.h"
#include "spreadsheet/biff8/globals.h"
#include "tests/fakes/temporary_folder.h"
#include "tests/spreadsheet/biff8_sheet.h"

namespace trvtrout::spreadsheet {

using namespace biff8;

inline constexpr const char* kPython = "/usr/bin/python3 '" SAMPLES "/../tests/spreadsheet/";

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

inline std::string workbook_stream(const std::string& bytes) { return CompoundFile(bytes).stream(u"Workbook"); }

struct Parts {
  Globals globals;
  std::map<std::u16string, std::vector<RecordView>> sheets;  // by name, up to the next sheet or the end
};

inline Parts parts_of(const std::string& stream) {
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
inline void expect_same_records(const std::vector<RecordView>& before, const std::vector<RecordView>& after,
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

inline const Record& first_of_type(const Globals& globals, std::uint16_t type) {
  return globals.records[globals.all(type).at(0)];
}

// What isn't meant to change is there in the same order; `globals` may have more.
inline void expect_kept(const Globals& before, const Globals& globals) {
  constexpr std::uint16_t kMayChange[] = {kContinue, kWindow1, kBoundSheet, kSupBook,         kExternSheet, kName,
                                          kSst,      kExtSst,  kTabId,      kMsoDrawingGroup, kXfCrc};
  auto at = globals.records.begin();
  for (Record record : before.records) {
    // Its first half is the same; by the second one results are worked out anew.
    if (record.type == kRecalcId && first_of_type(globals, kRecalcId).u32(4) == 0) record.set32(4, 0);
    if (std::ranges::find(kMayChange, record.type) != std::end(kMayChange)) continue;
    at = std::find_if(at, globals.records.end(),
                      [&](const Record& other) { return other.type == record.type && other.body == record.body; });
    ASSERT_TRUE(at != globals.records.end()) << "record " << record.type << " is gone";
    ++at;
  }
}

inline void expect_nothing_else_changed(const std::string& before, const std::string& after) {
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

inline Record& first_of(Globals& globals, std::uint16_t type) { return globals.records[globals.all(type)[0]]; }

inline std::string stream_of_one_sheet() {
  return workbook_stream(open_biff8(empty_biff8())->with_sheet(tests::sheet_of_all_kinds("One")));
}

// A workbook whose globals are changed first.
inline std::string changed(const std::function<void(Globals&)>& change,
                           const std::string& stream = stream_of_one_sheet()) {
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

inline std::string with_record(std::uint16_t type, std::string_view body) {
  return changed([&](Globals& globals) { globals.insert(1, {type, std::string(body)}); });
}

}  // namespace trvtrout::spreadsheet
