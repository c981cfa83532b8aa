#pragma once

#include <string>

#include "platform/spreadsheet/workbook_file.h"
#include "reports/host_services.h"

namespace trvtrout::spreadsheet {

// The one number of the spreadsheet's own errors.
inline constexpr int kSpreadsheetError = 1004;

[[noreturn]] inline void refuse(const std::string& what) { throw ServiceError(kSpreadsheetError, what); }

// Runs `action`; a workbook's error comes out as a ServiceError that names the file (a path of the machine).
auto naming_file(const std::string& path, const auto& action) {
  try {
    return action();
  } catch (const WorkbookError& error) {
    refuse("can't change \"" + path + "\": " + error.what());
  }
}

}  // namespace trvtrout::spreadsheet
