#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include "tests/fakes/temporary_folder.h"
#include "tests/support.h"

// Reports in the sheets of workbooks, as a person makes them and as other programs read them.
namespace trvtrout::tests {
namespace {

namespace fs = std::filesystem;

class WorkbookCommand : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"dense.vtr", "dense-next.vtr", "plant.vtr", "plant-next.vtr"})
      folder_.put(name, sample(name));
  }
  int run(const std::string& command) {
    const int status = std::system(("cd '" + folder_.at("") + "' && (" + command + ") >out 2>err </dev/null").c_str());
    out_ = fakes::get_file(folder_.at("out"));
    err_ = fakes::get_file(folder_.at("err"));
    return WEXITSTATUS(status);
  }
  int vtrout(const std::string& arguments) { return run("'" VTROUT "' " + arguments); }
  // Holds a workbook to the texts that the same command writes without it, as `reader` shows them.
  void expect_sheets(const std::string& reader, const std::string& workbook, const std::string& kind,
                     const std::string& others) {
    EXPECT_EQ(run("VTROUT='" VTROUT "' /usr/bin/python3 '" SAMPLES "/../tests/spreadsheet/check_export.py' " + reader +
                  " " + workbook + " " + kind + " '" + others + "'"),
              0)
        << reader << " on " << workbook << "\n"
        << err_;
  }
  std::size_t files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.at("")), {}));
  }

  fakes::TemporaryFolder folder_;
  std::string out_, err_;
};

// All eight parts of both kinds, into new workbooks and into ones that somebody made.
TEST_F(WorkbookCommand, AllPartsStandInTheirSheets) {
  ASSERT_EQ(run("/usr/bin/python3 '" SAMPLES "/../tests/spreadsheet/make_simple_workbooks.py'"), 0) << err_;
  for (const std::string extension : {".xls", ".xlsx"}) {
    for (const auto& [name, others] : {std::pair("new", ""), {"made", "First,Active,Last"}}) {
      for (const std::string kind : {"report", "compare"}) {
        const std::string workbook = name + ("-" + kind) + extension;
        if (*others != '\0') fs::copy_file(folder_.at(name + extension), folder_.at(workbook));
        ASSERT_EQ(vtrout(kind == "report" ? "report plant.vtr --workbook " + workbook
                                          : "compare plant.vtr plant-next.vtr --workbook " + workbook),
                  kind == "report" ? 0 : 1)
            << err_;
        EXPECT_EQ(out_, workbook + "\n");
        expect_sheets("python", workbook, kind, others);
      }
    }
  }
  // No text stands beside them, and nothing unfinished.
  for (const auto& entry : fs::directory_iterator(folder_.at(""))) {
    EXPECT_NE(entry.path().extension(), ".CSV") << entry.path();
    EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
  }
}

TEST_F(WorkbookCommand, OtherProgramsReadTheSameSheets) {
  ASSERT_EQ(run("/usr/bin/python3 '" SAMPLES "/../tests/spreadsheet/make_simple_workbooks.py'"), 0) << err_;
  bool any = false;
  for (const std::string reader : {"soffice", "ssconvert"}) {
    if (std::system(("command -v " + reader + " >/dev/null").c_str()) != 0) continue;
    any = true;
    for (const std::string workbook : {"made.xls", "made.xlsx"}) {
      fs::copy_file(folder_.at(workbook), folder_.at("c-" + workbook), fs::copy_options::overwrite_existing);
      ASSERT_EQ(vtrout("compare dense.vtr dense-next.vtr --workbook c-" + workbook), 1) << err_;
      expect_sheets(reader, "c-" + workbook, "compare", "First,Active,Last");
    }
  }
  if (!any) GTEST_SKIP() << "neither soffice nor ssconvert is here";
}

// All sheets or none: what one part can't have, the others don't leave behind.
TEST_F(WorkbookCommand, AFailingPartLeavesTheWorkbookAsItWas) {
  folder_.put("sick.vtr", sample("damaged/sick-lists.vtr"));
  ASSERT_EQ(vtrout("report plant.vtr --part lang --workbook w.xlsx"), 0) << err_;
  fs::rename(folder_.at("w.xlsx"), folder_.at("theirs.xlsx"));
  ASSERT_EQ(vtrout("statistics theirs.xlsx none.csv S"), 2);
  const std::string before = fakes::get_file(folder_.at("theirs.xlsx"));
  const std::size_t count = files();
  for (const std::string workbook : {"theirs.xlsx", "new.xls"}) {
    EXPECT_EQ(
        vtrout("compare sick.vtr plant.vtr --part product --part tree --part lookup --json --workbook " + workbook), 2);
    EXPECT_NE(err_.find("nothing was changed"), std::string::npos) << err_;
    EXPECT_NE(out_.find("\"workbook\": null"), std::string::npos) << out_;
  }
  EXPECT_TRUE(fakes::get_file(folder_.at("theirs.xlsx")) == before);
  EXPECT_EQ(files(), count);
}

// The command says what stands in the way before it changes anything.
TEST_F(WorkbookCommand, RefusalsChangeNothing) {
  ASSERT_EQ(vtrout("report plant.vtr --part lang --workbook w.xlsx"), 0) << err_;
  const std::string before = fakes::get_file(folder_.at("w.xlsx"));
  const std::size_t count = files();
  const std::pair<const char*, const char*> cases[] = {
      {"report plant.vtr --workbook w.xlsx", "\"Languages\""},
      {"compare plant.vtr plant-next.vtr --part lang --workbook w.xlsx", "\"Languages\""},
      {"report plant.vtr --workbook w.ods", "name a new workbook .xlsx or .xls"},
      {"report plant.vtr --workbook none/w.xlsx", "folder"},
      {"report plant.vtr --workbook plant.vtr", "not a workbook"},
      {"compare plant.vtr plant-next.vtr --summary --workbook w.xlsx", "--summary"},
      {"statistics none.xlsx report.csv S", "report.csv"},
      {"statistics w.xlsx plant.vtr S", "ends in .csv"},
      {"statistics report.csv report.csv S", "comes first"},
      {"statistics 'a\\w.xlsx' report.csv S", "backslash"},
      {"report plant.vtr --workbook ''", "--workbook"},
      {"report plant.vtr --temporary --workbook w.xlsx", "--temporary"},
      {"compare plant.vtr plant-next.vtr --no-color", "--workbook"},
  };
  for (const auto& [arguments, reason] : cases) {
    EXPECT_EQ(vtrout(arguments), 2) << arguments;
    EXPECT_NE(err_.find(reason), std::string::npos) << arguments << ": " << err_;
    EXPECT_EQ(out_, "");
    EXPECT_TRUE(fakes::get_file(folder_.at("w.xlsx")) == before) << arguments;
    EXPECT_EQ(files(), count) << arguments;
  }
}

TEST_F(WorkbookCommand, StatisticsMovesOneReport) {
  ASSERT_EQ(vtrout("report plant.vtr --part table --temporary"), 0) << err_;
  const std::string report = out_.substr(0, out_.size() - 1), text = fakes::get_file(folder_.at(report));
  ASSERT_EQ(vtrout("report plant.vtr --part lang --workbook w.xls"), 0) << err_;
  ASSERT_EQ(vtrout("statistics w.xls " + report +
                   " '\xC3\x9C"
                   "bersicht'"),
            0)
      << err_;
  EXPECT_EQ(out_, "w.xls\n");
  EXPECT_EQ(fakes::get_file(folder_.at(report)), text);
  ASSERT_EQ(run("/usr/bin/python3 -c \"import xlrd; print(xlrd.open_workbook('w.xls').sheet_names())\""), 0) << err_;
  EXPECT_EQ(out_,
            "['\xC3\x9C"
            "bersicht', 'Languages']\n");
}

// Bytes of the code page come out as characters, and control characters as what they are.
TEST_F(WorkbookCommand, TextsFollowTheCodePage) {
  folder_.put("cyrillic.csv", "\xC4\xE0,\x01_x0041_\r\n");
  for (const std::string workbook : {"w.xls", "w.xlsx"}) {
    ASSERT_EQ(vtrout("report plant.vtr --part lang --workbook " + workbook), 0) << err_;
    ASSERT_EQ(vtrout("statistics " + workbook + " cyrillic.csv New --code-page 1251"), 0) << err_;
  }
  ASSERT_EQ(run("/usr/bin/python3 -c \"import openpyxl, xlrd\nfrom openpyxl.utils.escape import unescape\n"
                "one = xlrd.open_workbook('w.xls').sheet_by_name('New').row_values(0)\n"
                "other = [unescape(cell.value) for cell in openpyxl.load_workbook('w.xlsx')['New'][1]]\n"
                "print(ascii(one), ascii(other))\""),
            0)
      << err_;
  EXPECT_EQ(out_, "['\\u0414\\u0430', '\\x01_x0041_'] ['\\u0414\\u0430', '\\x01_x0041_']\n");
}

}  // namespace
}  // namespace trvtrout::tests
