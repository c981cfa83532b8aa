#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/machine.h"
#include "platform/files/path.h"
#include "platform/files/replacement.h"
#include "platform/program/workbook_on_disk.h"

namespace trvtrout::host {

// The workbook that parts of a document become sheets of. The sheets go into a copy of it, or into a new workbook, that
// stands beside it under a name of its own; finish() puts that in its place. Without finish() the workbook is as it
// was.
class WorkbookTarget {
 public:
  // Looks for whatever stands in the way of sheets with these names before anything is changed: raises ServiceError
  // when the workbook can't be added to, when it has a sheet of such a name that can't be exchanged, and for a new one
  // whose name doesn't end in .xls or .xlsx. `path`: of the machine. The workbook is held for other programs until the
  // target is destroyed. The machine's spreadsheet names it by `path` from now on, wherever its content stands.
  WorkbookTarget(Machine& machine, const std::string& path, const std::vector<std::u16string>& sheet_names);

  // Moves the report that stands at `report` into a sheet, with the operation move(path of the workbook), and removes
  // the report. Tells the user on failure.
  template <class Move>
  bool take(TarvelVtrOut_InOut& utility, const char* part, const std::u16string& report, Move&& move) {
    const Boolean moved = move(platform::class_path(content_->temporary_path()));
    if (!moved) complain_of_part("sheet for", part, platform::class_path(path_), utility.LastFailure());
    utility.Delete_ASCII(report);
    return bool(moved);
  }
  // Puts the sheets in their place; raises ServiceError.
  void finish();

 private:
  std::string path_;
  std::optional<platform::WorkbookOnDisk> standing_;
  std::optional<platform::Replacement> content_;
};

platform::WorkbookRules workbook_rules(const Settings& settings);

}  // namespace trvtrout::host
