#pragma once

#include <string>

#include "platform/files/file_handle.h"
#include "services/host_services.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::platform {

// What a message says couldn't be done with a workbook.
inline constexpr const char* kChange = "change";

[[noreturn]] inline void refuse(const std::string& what) { throw ServiceError(ErrorNumber::kAutomation, what); }

// Runs `action`; a workbook's error comes out as a ServiceError that names the file.
auto naming_file(const std::string& file, const auto& action) {
  try {
    return action();
  } catch (const spreadsheet::WorkbookError& error) {
    refuse_file(ErrorNumber::kAutomation, kChange, file, error.what());
  }
}

}  // namespace trvtrout::platform
