#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "spreadsheet/ooxml/ooxml_workbook.h"
#include "spreadsheet/opc/package.h"

namespace {

using namespace trvtrout::spreadsheet;

// The parts that are read, by the input's first byte.
constexpr std::array<const char*, 6> kParts = {
    "xl/workbook.xml",     "xl/styles.xml", "xl/worksheets/sheet1.xml", "xl/_rels/workbook.xml.rels",
    "[Content_Types].xml", "_rels/.rels",
};

Sheet make_sheet(const char* name) {
  Sheet sheet;
  sheet.name = name;
  const auto style = sheet.style_number({.number_format = "0.0000", .left = true, .bold = true, .color_index = 3});
  sheet.columns = {{0, 2, style, 12}};
  sheet.cells = {Cell::text("_x0041_ \r<\xFF", style), Cell::number(0.1, 0), Cell::boolean(true, style), Cell()};
  sheet.row_ends = {2, 2, 4};
  sheet.has_filter = true;
  return sheet;
}

// A package is a zip file whose checksums no mutation meets, so that a part is replaced in a good one.
std::string package_of(const std::uint8_t* data, std::size_t size) {
  static const std::string good = open_ooxml(empty_ooxml())->with_sheet(make_sheet("First"));
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.empty() || static_cast<std::uint8_t>(bytes[0] - '0') >= kParts.size()) return std::string(bytes);
  std::vector<ooxml::PartChange> changes;
  changes.push_back(
      {kParts[static_cast<std::size_t>(bytes[0] - '0')], ooxml::text_stream(std::string(bytes.substr(1)))});
  return ooxml::Package(good).with(std::move(changes));
}

// Each sheet that can be exchanged has a text in one of its first cells.
void exchange_all(const std::string& bytes) {
  const std::vector<SheetMark> marks = {{0, ""}, {1, ""}, {2, ""}};
  const auto book = open_ooxml(bytes);
  const std::vector<std::string> names = book->sheet_names();
  for (std::size_t place = 0; place < std::min<std::size_t>(names.size(), 4); ++place) {
    std::string after;
    try {
      after = book->with_content(place, make_sheet("Another"), marks);
    } catch (const WorkbookError&) {
      continue;
    }
    try {
      if (open_ooxml(after)->sheet_names() != names) std::abort();
    } catch (const WorkbookError&) {
      std::abort();
    }
  }
}

}  // namespace

// Any package, or any text as a part of one: it's refused, or what comes out has the new sheet and can be opened again;
// and its sheets get other content.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto workbook = open_ooxml(package_of(data, size));
    const std::vector<std::string> before = workbook->sheet_names();
    const std::string bytes = workbook->with_sheet(make_sheet("Second's"));
    exchange_all(package_of(data, size));
    try {
      const auto again = open_ooxml(bytes);
      if (again->sheet_names().size() != before.size() + 1) std::abort();
      static_cast<void>(again->with_sheet(make_sheet("Third")));
    } catch (const WorkbookError&) {
      std::abort();
    }
  } catch (const WorkbookError&) {
    return 0;
  }
  return 0;
}
