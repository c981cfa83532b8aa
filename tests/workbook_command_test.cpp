#include "tests/command.h"

// Reports in the sheets of workbooks, as a person makes them and as other programs read them.
namespace trvtrout::tests {
namespace {

class WorkbookCommand : public Command {
 protected:
  void SetUp() override {
    for (const char* name : {"dense.vtr", "dense-next.vtr", "plant.vtr", "plant-next.vtr"}) put(name, sample(name));
  }
  // Expects the status and hands the outcome on.
  Outcome expect(int status, const std::string& commands) const {
    Outcome run = shell(commands);
    EXPECT_EQ(run.status, status) << commands << "\n" << run.err;
    return run;
  }
  void make_simple_workbooks() const { expect(0, kPython + kScripts + "make_simple_workbooks.py'"); }
  // Holds a workbook to the texts that the same command writes without it, as `reader` shows them.
  void expect_sheets(const std::string& reader, const std::string& workbook, const std::string& kind,
                     const std::string& others) const {
    expect(0, kPython + kScripts + "check_export.py' " + reader + " " + workbook + " " + kind + " '" + others + "'");
  }

  static inline const std::string kPython = "/usr/bin/python3 ", kScripts = "'" SAMPLES "/../tests/spreadsheet/";
};

// All eight parts of both kinds, into new workbooks and into ones that somebody made.
TEST_F(WorkbookCommand, AllPartsStandInTheirSheets) {
  make_simple_workbooks();
  for (const std::string extension : {".xls", ".xlsx"}) {
    for (const auto& [name, others] : {std::pair("new", ""), {"made", "First,Active,Last"}}) {
      for (const std::string kind : {"report", "compare"}) {
        const std::string workbook = name + ("-" + kind) + extension;
        if (*others != '\0') fs::copy_file(at(name + extension), at(workbook));
        const Outcome run = kind == "report"
                                ? expect(0, "vtrout report plant.vtr --workbook " + workbook)
                                : expect(1, "vtrout compare plant.vtr plant-next.vtr --workbook " + workbook);
        EXPECT_EQ(run.out, workbook + "\n");
        expect_sheets("python", workbook, kind, others);
      }
    }
  }
  // No text stands beside them, and nothing unfinished.
  for (const auto& [name, bytes] : files()) {
    EXPECT_NE(fs::path(name).extension(), ".CSV") << name;
    EXPECT_NE(fs::path(name).extension(), ".tmp") << name;
  }
}

TEST_F(WorkbookCommand, OtherProgramsReadTheSameSheets) {
  make_simple_workbooks();
  bool any = false;
  for (const std::string reader : {"soffice", "ssconvert"}) {
    if (shell("command -v " + reader).status != 0) continue;
    any = true;
    for (const std::string workbook : {"made.xls", "made.xlsx"}) {
      fs::copy_file(at(workbook), at("c-" + workbook), fs::copy_options::overwrite_existing);
      expect(1, "vtrout compare dense.vtr dense-next.vtr --workbook c-" + workbook);
      expect_sheets(reader, "c-" + workbook, "compare", "First,Active,Last");
    }
  }
  if (!any) GTEST_SKIP() << "neither soffice nor ssconvert is here";
}

// All sheets or none: what one part can't have, the others don't leave behind.
TEST_F(WorkbookCommand, AFailingPartLeavesTheWorkbookAsItWas) {
  put("sick.vtr", sample("damaged/sick-lists.vtr"));
  expect(0, "vtrout report plant.vtr --part lang --workbook w.xlsx && mv w.xlsx theirs.xlsx");
  expect_refused("vtrout statistics theirs.xlsx none.csv S", "none.csv");
  const auto before = files();
  for (const std::string workbook : {"theirs.xlsx", "new.xls"}) {
    const Outcome run = expect(
        2, "vtrout compare sick.vtr plant.vtr --part product --part tree --part lookup --json --workbook " + workbook);
    EXPECT_NE(run.err.find("nothing was changed"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("\"workbook\": null"), std::string::npos) << run.out;
  }
  EXPECT_TRUE(files() == before);
}

// Others' formulas and names lead to the new content, and nothing else of theirs changes.
TEST_F(WorkbookCommand, ReplacedSheetsShowThroughOthersFormulas) {
  const std::string again = "vtrout compare plant-next.vtr plant.vtr --part table ";
  expect(1, "vtrout compare plant.vtr plant-next.vtr --part table --workbook t.xlsx");
  expect(0, kPython + kScripts + "make_references.py'");
  const std::string text = lines(expect(1, again).out).at(0);
  const bool has_soffice = shell("command -v soffice").status == 0;
  for (const std::string workbook : {"openpyxl.xlsx", "soffice.xlsx", "soffice.xls"}) {
    if (!workbook.starts_with("openpyxl") && !has_soffice) continue;
    fs::copy_file(at(workbook), at("old-" + workbook));
    const Outcome refused = expect_refused(again + "--workbook " + workbook, "has a sheet \"Tables\" already");
    EXPECT_NE(refused.err.find("--replace-sheets exchanges it"), std::string::npos);
    EXPECT_EQ(expect(1, again + "--replace-sheets --workbook " + workbook).out, workbook + "\n");
    expect(0, kPython + kScripts + "check_references.py' old-" + workbook + " " + workbook + " '" + text + "'");
  }
}

// Other programs save the same cells in other ways.
TEST_F(WorkbookCommand, SheetsThatOtherProgramsSavedAreReplaced) {
  const std::string soffice = "soffice -env:UserInstallation=file://$PWD/user --headless --convert-to ";
  const struct {
    std::string program, workbook, saves;
  } kSavings[] = {{"soffice", "w.xls", soffice + "xls --outdir out w.xls"},
                  {"soffice", "w.xlsx", soffice + "xlsx --outdir out w.xlsx"},
                  {"ssconvert", "w.xls", "ssconvert -T Gnumeric_Excel:excel_biff8 w.xls out/w.xls"},
                  {"ssconvert", "w.xlsx", "ssconvert w.xlsx out/w.xlsx"}};
  for (const std::string workbook : {"w.xls", "w.xlsx"})
    expect(1, "vtrout compare plant.vtr plant-next.vtr --workbook " + workbook);
  fs::create_directory(at("out"));
  for (const auto& [program, workbook, saves] : kSavings) {
    if (shell("command -v " + program).status != 0) continue;
    expect(0, saves);
    for (const std::string command : {"compare plant-next.vtr plant.vtr", "report plant.vtr"}) {
      for (int turn = 0; turn < 2; ++turn)
        expect(command.starts_with("compare"), "vtrout " + command + " --replace-sheets --workbook out/" + workbook);
    }
  }
}

// Sheets that are there give way, others are added, and a second time nothing but the moment in their heads changes.
TEST_F(WorkbookCommand, SheetsAreReplacedAndAddedInOneRun) {
  make_simple_workbooks();
  for (const std::string workbook : {"made.xls", "made.xlsx"}) {
    expect(1, "vtrout compare plant-next.vtr plant.vtr --part lang --workbook " + workbook);
    expect(0, "vtrout report plant-next.vtr --part product --part tree --workbook " + workbook);
    for (const std::string kind : {"report", "compare", "compare", "report"}) {
      const std::string second = kind == "report" ? "" : " plant-next.vtr";
      expect(kind == "compare", "vtrout " + kind + " plant.vtr" + second + " --replace-sheets --workbook " + workbook);
      const std::string script = kScripts + "check_export.py' python " + workbook + " " + kind + " =";
      expect(0, kPython + script);
    }
  }
}

TEST_F(WorkbookCommand, SheetsOfOthersAreNotReplaced) {
  for (const std::string workbook : {"w.xls", "w.xlsx"}) {
    put("theirs.csv", "my own list,of,tables\r\n");
    expect(0, "vtrout report plant.vtr --part lang --workbook " + workbook + " && vtrout statistics " + workbook +
                  " theirs.csv TABLES");
    const std::string replace = " --part lang --part table --replace-sheets --workbook " + workbook;
    expect_refused("vtrout report plant.vtr" + replace, "its sheet \"TABLES\" can't be exchanged: its first row");
    expect_refused("vtrout compare plant.vtr plant-next.vtr" + replace, "rename or remove it");
    expect_refused("vtrout report plant.vtr --part lang --workbook " + workbook, "--replace-sheets");
    expect_refused("vtrout report plant.vtr --replace-sheets", "--workbook");
    const Outcome same = expect_refused("vtrout statistics " + workbook + " theirs.csv Tables", "rename or remove");
    EXPECT_EQ(same.err.find("--replace-sheets"), std::string::npos) << "an option that the command doesn't have";
  }
}

TEST_F(WorkbookCommand, ALockedWorkbookIsWaitedFor) {
  expect(0, "vtrout report plant.vtr --part lang --workbook w.xlsx");
  put("r.csv", "a,b\r\n");
  const std::string report = "vtrout report plant.vtr --part table --workbook w.xlsx";
  const std::string held = "exec 9<>w.xlsx; flock 9; ", released_soon = held + "(sleep 1; flock -u 9) & ";
  const Outcome at_once = expect_refused(held + report, "in use by another program");
  EXPECT_EQ(at_once.err.find("after a wait"), std::string::npos) << at_once.err;
  expect_refused(held + report + " --wait 1", "in use by another program, also after a wait of 1 second");
  expect(0, released_soon + report + " --wait 60");
  expect(0, released_soon + "vtrout statistics w.xlsx r.csv New --wait 60");
  expect_refused("vtrout report plant.vtr --wait 3", "--workbook");
  expect_refused(report + " --wait -1", "--wait");
  // Runs that begin at the same time come one after the other, and none is lost.
  expect(0,
         "for part in product field tree lookup; do vtrout report plant.vtr --part $part --workbook w.xlsx --wait 60 & "
         "pids=\"$pids $!\"; done; for pid in $pids; do wait $pid || exit 9; done");
  EXPECT_EQ(expect(0, kPython + "-c \"import openpyxl; print(len(openpyxl.load_workbook('w.xlsx').sheetnames))\"").out,
            "7\n");
}

// The command says what stands in the way before it changes anything.
TEST_F(WorkbookCommand, RefusalsChangeNothing) {
  expect(0, "vtrout report plant.vtr --part lang --workbook w.xlsx");
  const std::pair<const char*, const char*> cases[] = {
      {"report plant.vtr --workbook w.xlsx", "\"Languages\" already; --replace-sheets"},
      {"compare plant.vtr plant-next.vtr --part lang --workbook w.xlsx", "\"Languages\""},
      {"report plant.vtr --workbook w.ods", "must end in .xlsx or .xls"},
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
  for (const auto& [arguments, reason] : cases) expect_refused(std::string("vtrout ") + arguments, reason);
}

// What fails while the sheets are made is told by the name that the user gave, not by that of the unfinished content.
TEST_F(WorkbookCommand, FailuresNameTheWorkbookAsItWasGiven) {
  expect(0, "vtrout report plant.vtr --part lang --workbook w.xls");
  for (const std::string workbook : {"w.xls", "new.xls"}) {
    const Outcome run = expect_refused(
        "ulimit -f $((($(stat -c %s w.xls) + 511) / 512)); vtrout report plant.vtr --part field --workbook " + workbook,
        "no complete sheet for field in " + workbook + ": can't write \"" + workbook + "\": ");
    EXPECT_EQ(run.err.find(".vtrout-"), std::string::npos) << run.err;
  }
}

TEST_F(WorkbookCommand, StatisticsMovesOneReport) {
  const std::string report = lines(expect(0, "vtrout report plant.vtr --part table --temporary").out).at(0);
  const std::string text = get(report);
  expect(0, "vtrout report plant.vtr --part lang --workbook w.xls");
  EXPECT_EQ(expect(0, "vtrout statistics w.xls " + report + " '\u00DCbersicht'").out, "w.xls\n");
  EXPECT_EQ(get(report), text);
  EXPECT_EQ(expect(0, kPython + "-c \"import xlrd; print(xlrd.open_workbook('w.xls').sheet_names())\"").out,
            "['\u00DCbersicht', 'Languages']\n");
}

// As each reader knows the formats to which the file formats give a number.
TEST_F(WorkbookCommand, ValuesLookAsTheyWereWritten) {
  put("values.csv",
      ",,,,,,\"1,234\",\"1,234.5\",$5,$5.50,12%,0.5%,1e3,6/1/2004,1-Jun-04,1-Jun,6:00 PM,6:00:00 PM,6:00,"
      "6:00:00,6/1/2004 6:00\r\n");
  for (const std::string workbook : {"w.xls", "w.xlsx"}) {
    expect(0, "vtrout report plant.vtr --part lang --workbook " + workbook);
    expect(0, "vtrout statistics " + workbook + " values.csv New");
  }
  const Outcome shown =
      expect(0, kPython +
                    "-c '\nimport openpyxl, xlrd\nbook = xlrd.open_workbook(\"w.xls\", formatting_info=True)\n"
                    "cells = book.sheet_by_name(\"New\").row(0), openpyxl.load_workbook(\"w.xlsx\")[\"New\"][1]\n"
                    "for one, other in list(zip(*cells))[6:]:\n"
                    "  both = book.format_map[book.xf_list[one.xf_index].format_key].format_str, other.number_format\n"
                    "  print(*dict.fromkeys(text.replace(chr(34), \"\") for text in both))'");
  EXPECT_EQ(lines(shown.out),
            (std::vector<std::string>{"#,##0", "#,##0.00", "$#,##0_);[Red]($#,##0)", "$#,##0.00_);[Red]($#,##0.00)",
                                      "0%", "0.00%", "0.00E+00", "m/d/yy mm-dd-yy", "d-mmm-yy", "d-mmm", "h:mm AM/PM",
                                      "h:mm:ss AM/PM", "h:mm", "h:mm:ss", "m/d/yy h:mm"}));
}

// Bytes of the code page come out as characters, and control characters as what they are.
TEST_F(WorkbookCommand, TextsFollowTheCodePage) {
  put("cyrillic.csv", "\xC4\xE0,\x01_x0041_\r\n");
  for (const std::string workbook : {"w.xls", "w.xlsx"}) {
    expect(0, "vtrout report plant.vtr --part lang --workbook " + workbook);
    expect(0, "vtrout statistics " + workbook + " cyrillic.csv New --code-page 1251");
  }
  const Outcome shown =
      expect(0, kPython +
                    "-c \"import openpyxl, xlrd\nfrom openpyxl.utils.escape import unescape\n"
                    "one = xlrd.open_workbook('w.xls').sheet_by_name('New').row_values(0)\n"
                    "other = [unescape(cell.value) for cell in openpyxl.load_workbook('w.xlsx')['New'][1]]\n"
                    "print(ascii(one), ascii(other))\"");
  EXPECT_EQ(shown.out, "['\\u0414\\u0430', '\\x01_x0041_'] ['\\u0414\\u0430', '\\x01_x0041_']\n");
}

}  // namespace
}  // namespace trvtrout::tests
