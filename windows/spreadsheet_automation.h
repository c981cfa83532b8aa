#pragma once

#include "workbook/automation.h"

namespace trvtrout::windows {

// The spreadsheet program of the machine, driven by automation. Its objects are called late: members by the dispatch
// ids that they are known to have, else by name. An optional argument that isn't passed is missing where one behind it
// is passed, and left out where none is.
class SpreadsheetAutomation : public automation::Spreadsheet {
 public:
  // Raises ServiceError where no program of that name is registered or can be started.
  std::unique_ptr<automation::Application> CreateObject(const std::u16string& name) override;
};

}  // namespace trvtrout::windows
