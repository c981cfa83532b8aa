#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/program/workbook_on_disk.h"
#include "services/host_services.h"
#include "workbook/automation.h"

namespace trvtrout::platform {

// A workbook that messages name in another way than by its path.
struct ToldName {
  std::string path, told_as;
};

// A spreadsheet program without a window, for the calls that the workbook operations make. It opens comma-separated
// texts (by the extension .csv) and workbooks (by their content), and adds one sheet to a workbook at a time; sheets
// that are there can't be read or changed, but for those that give way to a new one of their name. What it can't do
// raises ServiceError.
class SpreadsheetProgram : public automation::Spreadsheet {
 public:
  // Texts are read through `files`, workbooks from the machine's disk; `locale` tells the code page and the present
  // year. Both must outlive it and its applications.
  SpreadsheetProgram(Files& files, Locale& locale) : files_(files), locale_(locale) {}

  // Messages name the workbook at `path` (of the machine) `told_as`, in applications that are created from now on.
  void tell_as(const std::string& path, const std::string& told_as) { told_ = {path, told_as}; }

  // For applications that are created from now on.
  void set_rules(WorkbookRules rules) { rules_ = std::move(rules); }
  const WorkbookRules& rules() const { return rules_; }

  std::unique_ptr<automation::Application> CreateObject(const std::u16string& name) override;

 private:
  Files& files_;
  Locale& locale_;
  ToldName told_;
  WorkbookRules rules_;
};

}  // namespace trvtrout::platform
