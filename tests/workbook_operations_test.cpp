#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>

#include "component/parts.h"
#include "spreadsheet/text/comma_text.h"
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
  // Rows of a sheet, counted from 1.
  struct Rows {
    std::size_t first = 0, last = 0;
    void add(std::size_t row) {
      if (first == 0) first = row;
      last = row;
    }
  };
  // Those of the comparison of two files that have a label.
  static Rows rows_labelled(const Part& part, const std::string& first, const std::string& second) {
    fakes::Machine other;
    TarvelVtrOut_InOut compared(other.services());
    std::u16string one = u"a.vtr", two = u"b.vtr", report, list;
    other.memory.files = {{one, first}, {two, second}};
    Boolean is_secondary = False;
    compared.ReadVTR(one, list, is_secondary);
    compared.ReadVTR(two, list, is_secondary = True);
    EXPECT_EQ((compared.*part.compare)(one, two, report), True) << part.name;
    const auto sheet = spreadsheet::read_comma_text(other.memory.files[report], 2004);
    Rows rows;
    for (std::uint32_t row = 0; row < sheet.rows(); ++row) {
      const auto cells = sheet.row(row);
      if (!cells.empty() && cells[0].kind() == spreadsheet::CellKind::kText && !cells[0].text().empty())
        rows.add(row + 1);
    }
    return rows;
  }
  // Those that are asked for their labels when a sheet on the comparison is coloured.
  Rows rows_looked_at(const std::u16string& sheet, const std::string& first, const std::string& second) {
    TarvelVtrOut_InOut one(machine.services()), two(machine.services());
    read(one, first);
    read(two, second);
    program = {};
    EXPECT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", sheet, &one, &two, True), True);
    Rows rows;
    const std::string begin = "Sheet2.Range(A", end = ").Cells.Value";
    for (const auto& call : program.calls) {
      if (call.ends_with(end)) rows.add(std::stoul(call.substr(begin.size())));
    }
    return rows;
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
  fakes::RecordingSpreadsheet& program = machine.spreadsheet;
  TarvelVtrOut_InOut utility{machine.services()}, primary{machine.services()}, secondary{machine.services()};
};

// On a sheet whose name stands for no part, whatever its letters are but for their case.
TEST_F(WorkbookOperations, CallsComeInTheirOrder) {
  const Calls first = {"Columns.(B:F).NumberFormat := 0", "Columns.HorizontalAlignment := -4131",
                       "Range(B2).NumberFormat := m/d/yy h:mm AM/PM", "Range(A1).Select"};
  EXPECT_EQ(statistics(u"fields"), True);
  EXPECT_EQ(program.calls, whole("fields", first));
  const Calls second = {"Columns.(C:D).NumberFormat := 0", "Columns.HorizontalAlignment := -4131",
                        "Range(C3).NumberFormat := m/d/yy h:mm AM/PM", "Range(A1).Select", "Range(A:A).AutoFilter"};
  for (const Boolean color : {False, Boolean{1}}) {
    program = {};
    EXPECT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", u"product", nullptr, nullptr, color), True);
    EXPECT_EQ(program.calls, whole("product", second));
  }
}

// Each label fills a list of its own; a list is applied at 21 cells, the rest at the end in the order of the labels.
TEST_F(WorkbookOperations, LabelsAreColouredInListsOf21) {
  read(primary, tests::sample("plant.vtr"));
  read(secondary, tests::sample("plant.vtr"));
  for (int row = 12; row < 12 + 22; ++row) program.values["A" + std::to_string(row)] = u"Deleted from Primary";
  program.values["A34"] = u"Added in Secondary";
  program.values["A35"] = u"Original in Primary";
  program.values["A36"] = u"Changed in Secondary";
  program.values["A37"] = u"Original in Primary ";
  ASSERT_EQ(compared(u"Fields", True), True);
  Calls applied;
  std::ranges::copy_if(program.calls, std::back_inserter(applied),
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

// Of documents that have nothing in common each item has a row with a label: from the first of them on labels are
// looked for, down to one row below the last.
TEST_F(WorkbookOperations, LabelsAreLookedForInTheRowsOfTheItems) {
  const std::string full = tests::sample("plant.vtr"), empty = tests::FileBuilder().with_end();
  for (const auto& [first, second] : {std::pair(full, empty), {empty, full}}) {
    for (const Part& part : document_parts()) {
      const Rows labelled = rows_labelled(part, first, second);
      EXPECT_GT(labelled.last, labelled.first) << part.name;
      const Rows looked_at = rows_looked_at(std::u16string(part.sheet.name), first, second);
      EXPECT_EQ(looked_at.first, labelled.first) << part.name;
      EXPECT_EQ(looked_at.last, labelled.last + 1) << part.name;
    }
  }
  // A list that doesn't hold together counts for nothing.
  EXPECT_EQ(rows_looked_at(u"Languages", tests::sample("damaged/sick-lists.vtr"), full).last,
            rows_looked_at(u"Languages", empty, full).last);
}

// Whatever fails, both sheets are released, the application quits and is released, and the result is False.
TEST_F(WorkbookOperations, EachFailureEndsTheApplication) {
  read(primary, tests::sample("plant.vtr"));
  read(secondary, tests::sample("plant-next.vtr"));
  program.values = {{"A12", u"Deleted from Primary"}};
  const auto run = [&](bool color) { return color ? compared(u"Tables", True) : statistics(u"Fields"); };
  for (const bool color : {false, true}) {
    for (std::size_t call = 1;; ++call) {
      program.calls.clear();
      program.failing_call = call;
      const Boolean result = run(color);
      const Calls& calls = program.calls;
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
  program = {};
  EXPECT_EQ(utility.XL_Output_Compared(u"b.xls", u"r.CSV", u"Tables", &primary, nullptr, True), False);
  EXPECT_EQ(program.calls.back(), "release application");
}

}  // namespace
}  // namespace trvtrout
