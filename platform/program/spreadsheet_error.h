#pragma once

#include <string>

#include "services/host_services.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::platform {

[[noreturn]] inline void refuse(const std::string& what) { throw ServiceError(ErrorNumber::kAutomation, what); }

// Runs `action`; a workbook's error comes out as a ServiceError that names the file (a path of the machine).
auto naming_file(const std::string& path, const auto& action) {
  try {
    return action();
  } catch (const spreadsheet::WorkbookError& error) {
    refuse("can't change \"" + path + "\": " + error.what());
  }
}

}  // namespace trvtrout::platform
