#pragma once

#include <memory>
#include <string>

#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet {

// A workbook in BIFF8, in an OLE2 file (.xls). Raises WorkbookError.
std::unique_ptr<WorkbookFile> open_biff8(std::string bytes);

// The OLE2 file of a workbook without a sheet.
std::string empty_biff8();

}  // namespace trvtrout::spreadsheet
