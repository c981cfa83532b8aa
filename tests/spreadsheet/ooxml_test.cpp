#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>
#include <xlsxwriter.h>

#include "spreadsheet/ooxml/ooxml_workbook.h"
#include "spreadsheet/ooxml/style_part.h"
#include "spreadsheet/opc/package.h"
#include "spreadsheet/workbook_file.h"
#include "tests/fakes/temporary_folder.h"

namespace trvtrout::spreadsheet {
namespace {

using fakes::get_file;
using fakes::TemporaryFolder;

constexpr const char* kName = "It's <new> & 1st";

bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

bool python(const std::string& script, const std::string& arguments) {
  return run("/usr/bin/python3 " SPREADSHEET_TESTS "/" + script + " " + arguments);
}

// A sheet with everything that a sheet can have; the scripts know what's in it.
Sheet make_sheet(const std::string& name) {
  Sheet sheet;
  sheet.name = name;
  const auto heading = sheet.style_number({.bold = true});
  const auto link = sheet.style_number({.left = true, .color_index = 10});
  const auto warning = sheet.style_number({.bold = true, .color_index = 3});
  const auto own = sheet.style_number({.number_format = "\"a\"\"<\"0.00"});
  const auto date = sheet.style_number({.number_format = "m/d/yyyy h:mm"});
  sheet.columns = {{0, 1, link, 20}, {2, 16383, heading, 0}};
  using namespace std::literals;
  const std::pair<std::string_view, std::uint16_t> texts[] = {
      {"Heading", heading}, {"=1+1", link},      {"x < y & \"z\" ]]>", 0},    {" two\nlines\t", 0},
      {"_x0041_ _x41_", 0}, {"cr\r nul\0"sv, 0}, {"\xEF\xBF\xBE\x80 ü€😀", 0},
  };
  for (const auto& [text, style] : texts) sheet.cells.push_back(Cell::text(text, style));
  sheet.row_ends = {sheet.cells.size(), sheet.cells.size()};
  Cell blank;
  blank.style = warning;
  sheet.cells.insert(sheet.cells.end(), {Cell::number(0.1, own), Cell::date(38139.5910300926, date),
                                         Cell::boolean(true, 0), blank, Cell::number(-1e300, 0)});
  sheet.row_ends.push_back(sheet.cells.size());
  sheet.has_filter = true;
  return sheet;
}

std::string with_content(const std::string& bytes, const Sheet& sheet) {
  const auto book = open_ooxml(bytes);
  const auto& names = book->sheet_names();
  const auto place = static_cast<std::size_t>(std::ranges::find(names, "New one") - names.begin());
  return book->with_content(place, sheet, std::vector<SheetMark>{{0, "Head"}});
}

std::string with_other_content(const std::string& bytes) {
  Sheet sheet;
  sheet.cells = {Cell::text("Heading of another kind", sheet.style_number({.number_format = "0.0000000"}))};
  sheet.row_ends = {1};
  return with_content(bytes, sheet);
}

std::string reason_against(const std::string& bytes) {
  try {
    static_cast<void>(open_ooxml(bytes)->with_sheet(make_sheet(kName)));
  } catch (const WorkbookError& error) {
    return error.what();
  }
  return "nothing";
}

// A macro workbook with a picture, a chart and rows of shared strings.
void write_macro_workbook(const TemporaryFolder& folder) {
  const std::string macros = folder.put("vbaProject.bin", std::string(5000, '\x5A'));
  lxw_workbook* book = workbook_new(folder.at("macros.xlsm").c_str());
  lxw_worksheet* sheet = workbook_add_worksheet(book, nullptr);
  lxw_format* bold = workbook_add_format(book);
  format_set_bold(bold);
  for (lxw_row_t row = 0; row < 500; ++row) {
    worksheet_write_string(sheet, row, 0, ("text " + std::to_string(row % 50)).c_str(), bold);
    worksheet_write_formula(sheet, row, 1, "=LEN(A1)", nullptr);
  }
  lxw_chart* chart = workbook_add_chart(book, LXW_CHART_LINE);
  chart_add_series(chart, nullptr, "=Sheet1!$B$1:$B$9");
  worksheet_insert_chart(sheet, 3, 3, chart);
  constexpr unsigned char kPicture[] = {0x42, 0x4D, 58, 0, 0, 0, 0, 0, 0,  0, 54, 0, 0, 0, 40, 0, 0, 0, 1, 0,
                                        0,    0,    1,  0, 0, 0, 1, 0, 24, 0, 0,  0, 0, 0, 4,  0, 0, 0, 0, 0,
                                        0,    0,    0,  0, 0, 0, 0, 0, 0,  0, 0,  0, 0, 0, 1,  2, 3, 0};
  worksheet_insert_image_buffer(sheet, 9, 9, kPicture, sizeof kPicture);
  workbook_define_name(book, "Sheet1!Local", "=Sheet1!$A$1");
  workbook_add_vba_project(book, macros.c_str());
  ASSERT_EQ(workbook_close(book), LXW_NO_ERROR);
}

TEST(OoxmlWorkbook, NothingButTheNewSheetChangesInWorkbooksOfOtherPrograms) {
  const TemporaryFolder folder;
  ASSERT_TRUE(python("ooxml_fixtures.py", folder.at("")));
  write_macro_workbook(folder);
  for (const std::string name :
       {"rich.xlsx", "epoch1904.xlsx", "prefixed.xlsx", "strict.xlsx", "relative.xlsx", "no_styles.xlsx",
        "hollow_styles.xlsx", "quotes.xlsx", "bare.xlsx", "palette.xlsx", "large.xlsx", "macros.xlsm", "redefined.xlsx",
        "utf16.xlsx", "streamed.xlsx", "wide.xlsx"}) {
    SCOPED_TRACE(name);
    const std::string before = get_file(folder.at(name));
    const auto workbook = open_ooxml(before);
    EXPECT_EQ(workbook->counts_from_1904(), name == "epoch1904.xlsx");
    const std::string after = workbook->with_sheet(make_sheet("New one"));
    EXPECT_TRUE(after == workbook->with_sheet(make_sheet("New one"))) << "not the same bytes for the same sheet";
    folder.put("added-" + name, after);
  }
  EXPECT_TRUE(python("ooxml_check.py", folder.at("") + " 'New one'"));
  for (const auto& entry : std::filesystem::directory_iterator(folder.at(""))) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with("added-")) continue;
    SCOPED_TRACE(name);
    const std::string other = with_other_content(get_file(entry.path()));
    folder.put(name, with_content(other, make_sheet("New one")));
    EXPECT_TRUE(with_content(get_file(entry.path()), make_sheet("New one")) == get_file(entry.path()));
  }
  EXPECT_TRUE(python("ooxml_check.py", folder.at("") + " 'New one' --exchanged"));
}

TEST(OoxmlWorkbook, SheetAfterSheetGoesInFrontOfTheLastOne) {
  std::string bytes = empty_ooxml();
  EXPECT_TRUE(open_ooxml(bytes)->sheet_names().empty());
  const std::vector<std::string> names = {"A_x0041_", kName, "ü\x01\t\""};
  std::size_t once = 0;
  for (const std::string& name : names) {
    bytes = open_ooxml(bytes)->with_sheet(make_sheet(name));
    once = once == 0 ? bytes.size() : once;
  }
  const auto workbook = open_ooxml(bytes);
  EXPECT_EQ(workbook->sheet_names(), (std::vector{names[2], names[1], names[0]}));
  const TemporaryFolder folder;
  folder.put("first.xlsx", open_ooxml(empty_ooxml())->with_sheet(make_sheet("First")));
  folder.put("added-first.xlsx", open_ooxml(get_file(folder.at("first.xlsx")))->with_sheet(make_sheet("New one")));
  EXPECT_TRUE(python("ooxml_check.py", folder.at("") + " 'New one'"));
}

TEST(OoxmlWorkbook, WhatMustNotOrCannotBeChangedIsRefusedWithTheReason) {
  const TemporaryFolder folder;
  ASSERT_TRUE(python("ooxml_fixtures.py", folder.at("")));
  const std::pair<const char*, const char*> reasons[] = {
      {"locked", "structure is protected"},
      {"binary", "(.xlsb)"},
      {"document", "not a workbook"},
      {"plain_zip", "not a workbook"},
      {"signed", "digitally signed"},
      {"shared", "stop sharing"},
      {"password", "encrypted"},
      {"twice", "two parts 'XL/WORKBOOK.XML'"},
      {"cut", "zip file is damaged"},
      {"damaged", "'xl/workbook.xml' is damaged"},
      {"overlapping", "zip file is inconsistent"},
      {"no_workbook", "'xl/workbook.xml' is damaged (it's missing)"},
      {"no_sheets", "doesn't list the sheets"},
      {"broken_xml", "'xl/workbook.xml' can't be used: Start-end tags mismatch"},
      {"doctype", "document type"},
      {"utf16", "UTF-16"},
      {"half_utf16", "half a character"},
      {"utf16_as_utf8", "encoding isn't UTF-8 or UTF-16"},
      {"backslashes", "by backslashes"},
      {"alternative_fonts", "alternatives"},
      {"alternative_list", "alternatives"},
      {"alternative_sheets", "alternatives"},
      {"latin", "encoding isn't UTF-8 or UTF-16"},
      {"deep", "too deep"},
      {"bomb", "larger than 32 MB"},
  };
  for (const auto& [name, reason] : reasons) {
    const std::string told = reason_against(get_file(folder.at(std::string("refused_") + name)));
    EXPECT_NE(told.find(reason), std::string::npos) << name << ": " << told;
  }
}

std::string part_of(const std::string& bytes, const std::string& name) { return ooxml::Package(bytes).read(name); }

// A workbook of one sheet with `text` in the place of `old` in a part.
std::string edited(const std::string& part, const std::string& old, const std::string& text) {
  const std::string bytes = open_ooxml(empty_ooxml())->with_sheet(make_sheet("First"));
  std::string content = part_of(bytes, part);
  const std::size_t at = content.find(old);
  EXPECT_NE(at, std::string::npos) << content;
  content.replace(at, old.size(), text);
  std::vector<ooxml::PartChange> changes;
  changes.push_back({part, ooxml::text_stream(content)});
  return ooxml::Package(bytes).with(std::move(changes));
}

TEST(OoxmlWorkbook, NoOldSheetIsTakenForTheNewOne) {
  const std::string before =
      edited("xl/workbook.xml", "</sheets>", R"(<sheet name="Lost" sheetId="9" r:id="rId3"/></sheets><x id="rId4"/>)");
  const std::string after = open_ooxml(before)->with_sheet(make_sheet("New one"));
  const std::string relations = part_of(after, "xl/_rels/workbook.xml.rels");
  EXPECT_EQ(relations.find("\"rId3\""), std::string::npos) << relations;
  EXPECT_EQ(relations.find("\"rId4\""), std::string::npos) << relations;
  EXPECT_NE(relations.find("\"rId5\""), std::string::npos) << relations;
}

TEST(OoxmlWorkbook, TheNewSheetIsTheActiveOneWhateverWasSaidBefore) {
  const std::string before = edited("xl/workbook.xml", "<workbookView", "<workbookView activeTab=\"-1\"");
  const std::string after = part_of(open_ooxml(before)->with_sheet(make_sheet("New one")), "xl/workbook.xml");
  EXPECT_NE(after.find("activeTab=\"0\""), std::string::npos) << after;
  EXPECT_LT(after.find("New one"), after.find("First")) << after;
}

std::string styles(const std::string& content) {
  return R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" )"
         R"(xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006">)" +
         content + "</styleSheet>";
}

TEST(StylePart, AReservedNumberMayStandForAnotherFormat) {
  const struct {
    const char *own, *asked, *number;
  } kCases[] = {
      {R"(<numFmt numFmtId="1" formatCode="dd-MM-yyyy h:mm a"/>)", "0", "164"},
      {R"(<numFmt numFmtId="1" formatCode="0"/>)", "0", "1"},
      {R"(<numFmt numFmtId="1" formatCode="yyyy"/><numFmt numFmtId="1" formatCode="0"/>)", "0", "164"},
      {R"(<numFmt numFmtId="1" formatCode="yyyy"/><numFmt numFmtId="170" formatCode="0"/>)", "0", "170"},
      {R"(<numFmt numFmtId="0" formatCode="GENERAL"/>)", "General", "0"},
      {R"(<numFmt numFmtId="0" formatCode="yyyy"/>)", "General", "164"},
      {R"(<numFmt numFmtId="4294967294" formatCode="yyyy"/>)", "0.0", "164"},
      {R"(<mc:AlternateContent><mc:Fallback><numFmt numFmtId="1" formatCode="yyyy"/></mc:Fallback></mc:AlternateContent>)",
       "0", "164"},
  };
  for (const auto& each : kCases) {
    const std::string xf = R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)";
    ooxml::StylePart part("styles",
                          styles("<numFmts>" + std::string(each.own) + "</numFmts><cellXfs>" + xf + "</cellXfs>"));
    const bool is_plain = each.asked == std::string("General");
    const auto numbers = part.formats_of({{.number_format = each.asked}});
    const std::string text(part.change().content->next());
    const std::string format = std::string("numFmtId=\"") + each.number + "\"";
    EXPECT_EQ(numbers[0], is_plain && each.number == std::string("0") ? 0u : 1u) << each.own;
    EXPECT_NE(text.rfind("<xf " + format), std::string::npos) << text;
    if (each.number == std::string("164")) {
      EXPECT_NE(text.find("<numFmt " + format + " formatCode=\"" + each.asked), std::string::npos) << text;
    }
  }
}

// A number that old cells name without its being defined stays undefined.
TEST(StylePart, NumbersOfOldFormatsAreLeftAlone) {
  ooxml::StylePart part("styles", styles(R"(<cellXfs><xf numFmtId="0"/><xf numFmtId="164"/></cellXfs>)"));
  part.formats_of({{.number_format = "0.0000"}});
  const std::string text(part.change().content->next());
  EXPECT_NE(text.find(R"(<numFmt numFmtId="165" formatCode="0.0000"/>)"), std::string::npos) << text;
}

TEST(StylePart, AlternativeItemsAreCounted) {
  const auto twice = [](const std::string& xml) {
    return "<mc:AlternateContent><mc:Choice Requires=\"x\">" + xml + "</mc:Choice><mc:Fallback>" + xml +
           "</mc:Fallback></mc:AlternateContent>";
  };
  const std::string bold = R"(<font><b/><color indexed="10"/></font>)", xf = R"(<xf numFmtId="0" fontId="0"/>)";
  ooxml::StylePart part("styles", styles("<fonts count=\"4\"><font/>" + twice(bold + "<font/>") +
                                         "<font/></fonts><cellXfs>" + twice(xf + xf) + xf + "</cellXfs>"));
  EXPECT_EQ(part.formats_of({{}, {.bold = true, .color_index = 3}}), (std::vector<std::uint32_t>{0, 3}));
  const std::string text(part.change().content->next());
  EXPECT_NE(text.find(R"(<fonts count="5">)"), std::string::npos) << text;
  EXPECT_NE(text.find("fontId=\"4\""), std::string::npos) << text;
}

// LibreOffice undoes the escapes that the other reader shows as they are.
TEST(OoxmlWorkbook, AnotherSpreadsheetProgramReadsEveryCell) {
  if (!run("command -v soffice >/dev/null")) GTEST_SKIP() << "LibreOffice isn't there";
  const TemporaryFolder folder;
  folder.put("made.xlsx", open_ooxml(empty_ooxml())->with_sheet(make_sheet(kName)));
  ASSERT_TRUE(run("soffice -env:UserInstallation=file://" + folder.at("user") +
                  " --headless --convert-to csv:\"Text - txt" + " - csv (StarCalc)\":44,34,76,1 --outdir " +
                  folder.at("") + " " + folder.at("made.xlsx") + " >/dev/null 2>&1"));
  using namespace std::literals;
  EXPECT_EQ(get_file(folder.at("made.csv")),
            "\"Heading\",\"=1+1\",\"x < y & \"\"z\"\" ]]>\",\" two\nlines\t\",\"_x0041_ _x41_\",\"cr\r nul\0\","
            "\"\xEF\xBF\xBE? ü€😀\"\n,,,,,,\na<0.10,6/1/2004 14:11,TRUE,,-1E+300,,\n"s);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
