#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "tests/support.h"

namespace trvtrout {
namespace {

using Calls = std::vector<std::string>;

class WorkbookOperations : public testing::Test {
 protected:
  Boolean statistics(const std::u16string& sheet) { return utility.XL_Output_Statistics(u"b.xls", u"r.CSV", sheet); }
  Boolean compared(const std::u16string& sheet, Boolean color) {
    return utility.XL_Output_Compared(u"b.xls", u"r.CSV", sheet, &primary, &secondary, color);
  }
  void read(TarvelVtrOut_InOut& document, const std::string& bytes) {
    std::u16string path = u"a.vtr", list;
    Boolean no = False;
    machine.memory.files[path] = bytes;
    ASSERT_EQ(document.ReadVTR(path, list, no), True);
  }
  // The calls up to the sheet's name and from the saving on are the same in each run.
  static Calls whole(const std::string& sheet, const Calls& middle) {
    Calls calls = {"CreateObject Excel.Application", "DisplayAlerts := False",     "Workbooks.Open r.CSV",
                   "ActiveWorkbook.ActiveSheet",     "Sheet1.Cells.Copy",          "Workbooks.Open b.xls",
                   "ActiveWorkbook.Sheets.Add",      "ActiveWorkbook.ActiveSheet", "Sheet2.Paste",
                   "Sheet2.Name := " + sheet};
    for (const auto& call : middle) calls.push_back("Sheet2." + call);
    for (const auto* call : {"ActiveWorkbook.SaveAs b.xls, AccessMode 1", "ActiveWorkbook.Close", "Workbooks.Close",
                             "release Sheet1", "release Sheet2", "Quit", "release application"}) {
      calls.emplace_back(call);
    }
    return calls;
  }

  fakes::Machine machine;
  fakes::RecordingSpreadsheet& spreadsheet = machine.spreadsheet;
  TarvelVtrOut_InOut utility{machine.services()}, primary{machine.services()}, secondary{machine.services()};
};

constexpr const char* kMoment = ".NumberFormat := m/d/yy h:mm AM/PM";

TEST_F(WorkbookOperations, StatisticsFormatsBySheetName) {
  struct Case {
    std::u16string sheet;
    Calls columns, cells;
  };
  const Case cases[] = {{u"Fields", {"Columns.(N).NumberFormat := 0"}, {}},
                        {u"Product", {}, {std::string("Range(C6)") + kMoment}},
                        {u"fields", {}, {}}};
  for (const auto& [sheet, columns, cells] : cases) {
    spreadsheet = {};
    EXPECT_EQ(statistics(sheet), True);
    Calls middle = {"Columns.(B:F).NumberFormat := 0"};
    middle.insert(middle.end(), columns.begin(), columns.end());
    middle.emplace_back("Columns.HorizontalAlignment := -4131");
    middle.push_back(std::string("Range(B2)") + kMoment);
    middle.insert(middle.end(), cells.begin(), cells.end());
    middle.emplace_back("Range(A1).Select");
    EXPECT_EQ(spreadsheet.calls, whole(text::to_utf8(sheet), middle));
  }
}

TEST_F(WorkbookOperations, ComparedWithoutColorFormatsBySheetName) {
  struct Case {
    std::u16string sheet;
    Calls own;
  };
  const Case cases[] = {{u"Product", {std::string("Range(D7)") + kMoment, std::string("Range(I7)") + kMoment}},
                        {u"Tree", {"Columns.(G).NumberFormat := 0"}},
                        {u"Fields", {"Columns.(O).NumberFormat := 0"}},
                        {u"Tables", {}},
                        {u"product", {}}};
  for (const auto& [sheet, own] : cases) {
    Calls middle = {"Columns.(C:D).NumberFormat := 0", "Columns.HorizontalAlignment := -4131",
                    std::string("Range(C3)") + kMoment};
    middle.insert(middle.end(), own.begin(), own.end());
    middle.insert(middle.end(), {"Range(A1).Select", "Range(A:A).AutoFilter"});
    for (const Boolean color : {False, Boolean{1}}) {
      spreadsheet = {};
      EXPECT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", sheet, nullptr, nullptr, color), True);
      EXPECT_EQ(spreadsheet.calls, whole(text::to_utf8(sheet), middle));
    }
  }
}

// Each label fills a list of its own; a list is applied at 21 cells, the rest at the end in the order of the labels.
TEST_F(WorkbookOperations, LabelsAreColouredInListsOf21) {
  read(primary, tests::sample("plant.vtr"));
  read(secondary, tests::sample("plant.vtr"));
  for (int row = 12; row < 12 + 22; ++row) spreadsheet.values["A" + std::to_string(row)] = u"Deleted from Primary";
  spreadsheet.values["A34"] = u"Added in Secondary";
  spreadsheet.values["A35"] = u"Original in Primary";
  spreadsheet.values["A36"] = u"Changed in Secondary";
  spreadsheet.values["A37"] = u"Original in Primary ";
  ASSERT_EQ(compared(u"Fields", True), True);
  Calls applied;
  std::ranges::copy_if(spreadsheet.calls, std::back_inserter(applied),
                       [](const auto& call) { return call.find("Font.") != call.npos; });
  std::string first_list = "A12";
  for (int row = 13; row <= 32; ++row) first_list += ",A" + std::to_string(row);
  Calls expected;
  for (const auto& [cells, color] :
       {std::pair(first_list, "3"), {"A35", "10"}, {"A36", "5"}, {"A33", "3"}, {"A34", "53"}}) {
    const std::string font = "Sheet2.Range(" + cells + ").Cells.Font.";
    expected.push_back(font + "ColorIndex := " + color);
    expected.push_back(font + "Bold := True");
  }
  EXPECT_EQ(applied, expected);
}

// The rows that are looked at, by the sizes that the accessors give.
TEST_F(WorkbookOperations, TheRowEstimateFollowsTheAccessors) {
  read(primary, tests::sample("plant.vtr"));
  read(secondary, tests::sample("plant-next.vtr"));
  std::int32_t count = 0, current = 0, max = 0;
  std::u16string text;
  const auto sum = [&](auto size_of) { return size_of(primary) + size_of(secondary); };
  struct Case {
    std::u16string sheet;
    int first;
    int rows;
  };
  std::int32_t size = 0;
  const auto tree = [&](auto& document) { return document.GetTreInfo(count, current, max, size), size; };
  const auto tables = [&](auto& document) { return document.GetTableInfo(count, current, max, size), size; };
  const auto lookups = [&](auto& document) { return document.GetLookupInfo(count, current, max, size), size; };
  const auto tags = [&](auto& document) { return document.GetTagInfo(count, size), size; };
  const auto languages = [&](auto& document) { return document.GetLanInfo(count, size), size; };
  const auto include = [&](auto& document) { return document.GetInclInfo(count, current, max, size), size; };
  const auto module = [&](auto& document) { return document.GetMdlInfo(count, size), size; };
  const auto fields = [&](auto& document) { return document.GetFieldsInfo(size), size; };
  const auto nodes = [&](auto& document) { return document.GetDsmInfo(count, text, text, size), count + size; };
  const Case cases[] = {{u"Product", 28, 6 + sum(include) + sum(module)},
                        {u"Tree", 12, sum(tree)},
                        {u"Fields", 8, sum(fields)},
                        {u"Tables", 12, sum(tables)},
                        {u"Lookups", 12, sum(lookups)},
                        {u"Control Tags", 10, sum(tags)},
                        {u"Languages", 10, sum(languages)},
                        {u"Data Send", 12, 4 + sum(nodes)}};
  for (const auto& [sheet, first, rows] : cases) {
    spreadsheet = {};
    ASSERT_EQ(compared(sheet, True), True);
    std::string first_value, last_value;
    for (const auto& call : spreadsheet.calls) {
      if (!call.ends_with("Value")) continue;
      if (first_value.empty()) first_value = call;
      last_value = call;
    }
    EXPECT_EQ(first_value, "Sheet2.Range(A" + std::to_string(first) + ").Cells.Value");
    EXPECT_EQ(last_value, "Sheet2.Range(A" + std::to_string(first + rows) + ").Cells.Value");
    EXPECT_GT(rows, 6);
  }

  // A list that doesn't hold together counts for nothing.
  TarvelVtrOut_InOut sick{machine.services()};
  read(sick, tests::sample("damaged/sick-lists.vtr"));
  ASSERT_NE(sick.GetLanInfo(count, size), u"OK");
  spreadsheet = {};
  ASSERT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", u"Languages", &sick, &secondary, True), True);
  const auto last = std::ranges::find_if(spreadsheet.calls.rbegin(), spreadsheet.calls.rend(),
                                         [](const auto& call) { return call.ends_with("Value"); });
  EXPECT_EQ(*last, "Sheet2.Range(A" + std::to_string(10 + languages(secondary)) + ").Cells.Value");
}

// Whatever fails, both sheets are released, the application quits and is released, and the result is False.
TEST_F(WorkbookOperations, EachFailureEndsTheApplication) {
  read(primary, tests::sample("plant.vtr"));
  read(secondary, tests::sample("plant-next.vtr"));
  spreadsheet.values = {{"A12", u"Deleted from Primary"}};
  const auto run = [&](bool color) { return color ? compared(u"Tables", True) : statistics(u"Fields"); };
  for (const bool color : {false, true}) {
    for (std::size_t call = 1;; ++call) {
      spreadsheet.calls.clear();
      spreadsheet.failing_call = call;
      const Boolean result = run(color);
      const Calls& calls = spreadsheet.calls;
      if (calls.size() < call || calls[call - 1].starts_with("release")) {
        if (result == True) break;
        continue;
      }
      ASSERT_EQ(result, False) << calls[call - 1];
      EXPECT_NE(utility.LastFailure().find("injected fault"), std::string::npos);
      if (call == 1) {
        EXPECT_EQ(calls.size(), 1U);
        continue;
      }
      EXPECT_EQ(calls[calls.size() - 2], "Quit");
      EXPECT_EQ(calls.back(), "release application");
      EXPECT_EQ(std::ranges::count(calls, "ActiveWorkbook.ActiveSheet"),
                std::ranges::count_if(calls, [](auto& made) { return made.starts_with("release Sheet"); }) +
                    (calls[call - 1] == "ActiveWorkbook.ActiveSheet" ? 1 : 0));
    }
    EXPECT_TRUE(machine.message_box.calls.empty());
  }
  spreadsheet = {};
  EXPECT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", u"Tables", &primary, nullptr, True), False);
  EXPECT_EQ(spreadsheet.calls.back(), "release application");
}

}  // namespace
}  // namespace trvtrout
