#include "spreadsheet/text/comma_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <utility>

#include "tests/support.h"

namespace trvtrout::spreadsheet {
namespace {

constexpr int kPresentYear = 2006;

std::string spelled(double number) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

// What a cell holds, as one line: its kind, its value to the last bit and its number format unless General.
std::string shown(const Sheet& sheet, const Cell& cell) {
  if (cell.kind() == CellKind::kBlank) return "blank";
  if (cell.kind() == CellKind::kText) return "text";
  if (cell.kind() == CellKind::kBoolean) return cell.number() != 0 ? "true" : "false";
  const std::string& format = sheet.styles.at(cell.style).number_format;
  return (cell.kind() == CellKind::kDate ? "date " : "") + spelled(cell.number()) +
         (format == "General" ? "" : " " + format);
}

// The texts of the cells, rows in brackets.
std::string layout(const std::string& text) {
  const Sheet sheet = read_comma_text(text, kPresentYear);
  std::string lines;
  for (std::size_t row = 0; row < sheet.rows(); ++row) {
    lines += "[";
    for (const Cell& cell : sheet.row(row)) {
      if (&cell != &sheet.row(row)[0]) lines += "|";
      if (cell.kind() != CellKind::kBlank) lines += cell.kind() == CellKind::kText ? cell.text() : shown(sheet, cell);
    }
    lines += "]";
  }
  return lines;
}

TEST(CommaText, SplitsRowsAndCells) {
  const std::pair<std::string, std::string> kCases[] = {
      {"", ""},
      {"a", "[a]"},
      {"a\r\nb\nc\rd\r\n", "[a][b][c][d]"},
      {"a\r\r\nb\n\nc\r", "[a][][b][][c]"},
      {"a,,b,\r\n,\n", "[a||b|][|]"},
      {"\"a,\"\"b\"\"\r\nc\",d\n", "[a,\"b\"\r\nc|d]"},
      {"\"\",\"\"\"\",\"a\"\"\"\n", "[|\"|a\"]"},
      {"\"a\"b\"c\",\"\"x\"\" d\n", "[ab\"c\"|x\"\" d]"},
      {"a\"b,\" , \"c\"\n", "[a\"b| , c\"]"},
      {"\"a\"\"", "[a\"]"},
      {"x,\"", "[x|]"},
      {std::string("a\0b\t,\x01", 6), std::string("[a\0b\t|\x01]", 8)},
      {"\xC3\xBC\xFF, a \n", "[\xC3\xBC\xFF| a ]"},
  };
  for (const auto& [text, expected] : kCases) EXPECT_EQ(layout(text), expected) << testing::PrintToString(text);
}

// What stands between the bars.
std::vector<std::string> parts(const std::string& list) {
  std::vector<std::string> found;
  std::istringstream stream(list);
  for (std::string part; std::getline(stream, part, '|');) found.push_back(part);
  return found;
}

std::string recognized_as(const std::string& text) {
  const Sheet sheet = read_comma_text('"' + text + '"', kPresentYear);
  const Cell& cell = sheet.cells.at(0);
  const bool whole = cell.kind() != CellKind::kText || cell.text() == text;
  return whole ? shown(sheet, cell) : "another text";
}

TEST(CommaText, RecognizesValues) {
  const auto cases = parts(
      "5 -> 5|+5 -> 5|-5 -> -5|.5 -> 0.5|5. -> 5|  7  -> 7|007 -> 7|-0.0 -> 0|0.1 -> 0.1|(5) -> -5|"
      "1e3 -> 1000 0.00E+00|-1.5E-7 -> -1.5e-07 0.00E+00|1,234 -> 1234 #,##0|-12,345,678.5 -> -12345678.5 #,##0.00|"
      R"((1,234) -> -1234 #,##0|12% -> 0.12 0%|-0.5% -> -0.005 0.00%|$5 -> 5 "$"#,##0_);[Red]\("$"#,##0\)|)"
      R"(-$5 -> -5 "$"#,##0_);[Red]\("$"#,##0\)|($1,234.50) -> -1234.5 "$"#,##0.00_);[Red]\("$"#,##0.00\)|)"
      "9999999999999999 -> 9999999999999990|12345678901234567890E-4 -> 1234567890123450 0.00E+00|"
      "0.00012345678901234567 -> 0.000123456789012345|9.99999999999999E307 -> 9.99999999999999e+307 0.00E+00|"
      "1E308 -> text|1E400 -> text|1E-400 -> 0 0.00E+00|-1E-308 -> 0 0.00E+00|0E99999999999999999999 -> 0 0.00E+00|"
      "1E99999999999999999999 -> text|1E-99999999999999999999 -> 0 0.00E+00|true -> true|FALSE -> false|"
      "truest -> text| -> blank|6/1 -> date 38869 d-mmm|6/1/04 -> date 38139 m/d/yyyy|"
      "06/01/2004 -> date 38139 m/d/yyyy|2004-06-01 -> date 38139 m/d/yyyy|1-jun -> date 38869 d-mmm|"
      "1-Jun-04 -> date 38139 d-mmm-yy|Jun 1, 2004 -> date 38139 d-mmm-yy|6/1/29 -> date 47270 m/d/yyyy|"
      "6/1/30 -> date 11110 m/d/yyyy|1/1/1900 -> date 1 m/d/yyyy|2/28/1900 -> date 59 m/d/yyyy|"
      "2/29/1900 -> date 60 m/d/yyyy|3/1/1900 -> date 61 m/d/yyyy|12/31/9999 -> date 2958465 m/d/yyyy|"
      "2/29/2004 -> date 38046 m/d/yyyy|2/29/1900 12:00 -> date 60.5 m/d/yyyy h:mm|6:00 -> 0.25 h:mm|"
      "18:00:00 -> 0.75 h:mm:ss|12:00 am -> 0 h:mm AM/PM|12:00:00 PM -> 0.5 h:mm:ss AM/PM");
  for (const std::string& line : cases) {
    const std::size_t arrow = line.find(" -> ");
    EXPECT_EQ(recognized_as(line.substr(0, arrow)), line.substr(arrow + 4)) << line;
  }
  const std::string zeros(400, '0');
  EXPECT_EQ(recognized_as("." + zeros + "1E401"), "1 0.00E+00");
  EXPECT_EQ(recognized_as("1" + zeros), "text");
  for (const char* moment : {"6/1/2004 2:11:05 PM", "2004-06-01  14:11:05", "1-JUN-04 02:11:05 pm"}) {
    EXPECT_EQ(recognized_as(moment), "date " + spelled(38139 + 51065 / 86400.0) + " m/d/yyyy h:mm") << moment;
  }
}

TEST(CommaText, KeepsEveryOtherText) {
  const auto texts = parts(
      " |-|+|.|-.|e5|5e|5e+|5 5|+-5|--5|(5|5)|(-5)|()|$|%|5%%|$5%|1,23|1,2345|1234,567|,123|1,,234|1,234,|0x1F|inf|"
      "nan|1_000|1.2.3|\xD9\xA3|=1+1|+A1|-A1|@SUM(A1)|'5|5\t|T002|4.2a|2/30/2004|13/1/2004|2/29|0/1/2004|6/0/2004|"
      "6/1/204|6/1/20045|12/31/1899|6/1/2004/|6//2004|31-Jun|1-Juni|Jun 1 2004|Jun|24:00|6:60|6:00:60|13:00 PM|"
      "0:00 AM|6:00PM|6:00 XM|6:0|6/1/2004 5|6/1/20046:00|6/1/2004\t6:00|6:00 6/1/2004|2004-13-01");
  for (const std::string& text : texts) EXPECT_EQ(recognized_as(text), "text") << text;
}

// The text of a sheet whose dates are those of the sample reports.
std::string text_of(const Sheet& sheet) {
  std::string text;
  for (std::size_t row = 0; row < sheet.rows(); ++row) {
    for (const Cell& cell : sheet.row(row)) {
      if (&cell != &sheet.row(row)[0]) text += ',';
      if (cell.kind() == CellKind::kText) text += cell.text();
      if (cell.kind() == CellKind::kNumber) text += shown(sheet, cell);
      if (cell.kind() == CellKind::kBoolean) text += cell.number() != 0 ? "True" : "False";
      if (cell.kind() == CellKind::kDate) text += cell.number() < 38140 ? "1-Jun-04 02:11 PM" : "6/2/2004 9:05:00 AM";
    }
    text += "\r\n";
  }
  return text;
}

TEST(CommaText, TakesSampleReportsWhole) {
  std::size_t reports = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(SAMPLES "/expected")) {
    if (entry.path().extension() != ".csv") continue;
    std::string report = tests::file_bytes(entry.path().string());
    report = std::regex_replace(report, std::regex("@DATE@"), "1-Jun-04 02:11 PM");
    const Sheet sheet = read_comma_text(report, kPresentYear);
    EXPECT_TRUE(text_of(sheet) == std::regex_replace(report, std::regex("\r\n|\r|\n"), "\r\n")) << entry.path();
    EXPECT_TRUE(std::ranges::count(sheet.cells, CellKind::kDate, &Cell::kind) > 0) << entry.path();
    ++reports;
  }
  EXPECT_GT(reports, 40U);
}

}  // namespace
}  // namespace trvtrout::spreadsheet
