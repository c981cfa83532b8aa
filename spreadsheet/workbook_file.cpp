#include "spreadsheet/workbook_file.h"

#include <string_view>
#include <utility>

#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_format.h"
#include "spreadsheet/ooxml/ooxml_workbook.h"

namespace trvtrout::spreadsheet {
namespace {

constexpr std::string_view kZipSignature = "PK";

}  // namespace

std::unique_ptr<WorkbookFile> open_workbook(std::string bytes) {
  if (bytes.starts_with(biff8::compound::kSignature)) return open_biff8(std::move(bytes));
  if (bytes.starts_with(kZipSignature)) return open_ooxml(std::move(bytes));
  throw WorkbookError("it's not a workbook that can be added to: neither an .xls nor an .xlsx file by its content");
}

std::string empty_workbook(WorkbookFormat format) {
  return format == WorkbookFormat::kBiff8 ? empty_biff8() : empty_ooxml();
}

}  // namespace trvtrout::spreadsheet
