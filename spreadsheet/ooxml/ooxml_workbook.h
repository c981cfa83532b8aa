#pragma once

#include <memory>
#include <string>

#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet {

// A workbook in OOXML (.xlsx, .xlsm). Raises WorkbookError.
std::unique_ptr<WorkbookFile> open_ooxml(std::string bytes);

// The package of a workbook without a sheet.
std::string empty_ooxml();

}  // namespace trvtrout::spreadsheet
