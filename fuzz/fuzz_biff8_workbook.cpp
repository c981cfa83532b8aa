#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_file.h"

namespace {

using namespace trvtrout::spreadsheet;

Sheet small_sheet() {
  Sheet sheet;
  sheet.name = "It's new";
  sheet.has_filter = true;
  const auto style = sheet.style_number({.number_format = "0.0000", .left = true, .bold = true, .color_index = 3});
  sheet.columns = {{0, 3, style, 12}};
  sheet.cells = {Cell::number(1.5, style), Cell::date(38139.5, 0), Cell::text("a text", style), Cell(),
                 Cell::boolean(true, 0)};
  sheet.row_ends = {3, 5};
  return sheet;
}

// The bytes as the stream of a workbook, in a file that is whole.
std::string wrapped(std::string stream) {
  stream.resize(std::max<std::size_t>(stream.size(), biff8::CompoundFile::kMiniCutoff));
  return biff8::compound_file_of(u"Workbook", stream);
}

// Each sheet that can be exchanged has a text in one of its first cells.
void exchange_all(const std::string& bytes) {
  const std::vector<SheetMark> marks = {{0, ""}, {1, ""}, {2, ""}};
  const auto book = open_biff8(bytes);
  const std::vector<std::string> names = book->sheet_names();
  for (std::size_t place = 0; place < std::min<std::size_t>(names.size(), 4); ++place) {
    std::string after;
    try {
      after = book->with_content(place, small_sheet(), marks);
    } catch (const WorkbookError&) {
      continue;
    }
    if (open_biff8(after)->sheet_names() != names) std::abort();
  }
}

}  // namespace

// Any bytes as a workbook, and as the stream in one: refused, or given a sheet such that it opens again with one more;
// and its sheets given other content.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!bytes.starts_with("\xD0\xCF")) bytes = wrapped(std::move(bytes));
  std::string after;
  std::size_t sheets = 0;
  try {
    const auto book = open_biff8(bytes);
    sheets = book->sheet_names().size();
    after = book->with_sheet(small_sheet());
  } catch (const WorkbookError&) {
    return 0;
  }
  if (open_biff8(after)->sheet_names().size() != sheets + 1) std::abort();
  exchange_all(bytes);
  exchange_all(after);
  return 0;
}
