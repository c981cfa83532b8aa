#include "spreadsheet/workbook_file.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_format.h"
#include "spreadsheet/biff8/records.h"
#include "spreadsheet/ooxml/ooxml_workbook.h"

namespace trvtrout::spreadsheet {
namespace {

constexpr std::string_view kZipSignature = "PK";

// Before BIFF8 a workbook could be a stream of records without a container, from its BOF on.
bool is_older_stream(std::string_view bytes) {
  constexpr std::uint16_t kBofs[] = {0x0009, 0x0209, 0x0409, 0x0809};
  constexpr std::uint16_t kKinds[] = {0x0005, 0x0010, 0x0020, 0x0040, 0x0100};
  constexpr std::size_t kShortestBof = 4, kLongestBof = 16;
  if (bytes.size() < biff8::kRecordHead + kShortestBof) return false;
  const auto number = [bytes](std::size_t at) { return get<std::uint16_t>(bytes, at); };
  return std::ranges::count(kBofs, number(0)) != 0 && number(2) >= kShortestBof && number(2) <= kLongestBof &&
         number(4) != biff8::kVersion && std::ranges::count(kKinds, number(6)) != 0;
}

}  // namespace

std::unique_ptr<WorkbookFile> open_workbook(std::string bytes) {
  if (bytes.starts_with(biff8::compound::kSignature)) return open_biff8(std::move(bytes));
  if (bytes.starts_with(kZipSignature)) return open_ooxml(std::move(bytes));
  if (is_older_stream(bytes)) biff8::raise_older_format();
  throw WorkbookError(
      "it's not a workbook that a sheet can be added to: neither an .xls nor an .xlsx file by its content");
}

std::string empty_workbook(WorkbookFormat format) {
  return format == WorkbookFormat::kBiff8 ? empty_biff8() : empty_ooxml();
}

}  // namespace trvtrout::spreadsheet
