#pragma once

#include <string>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"
#include "host/parts.h"

namespace trvtrout::host {

// The workbook that parts of a document become sheets of. One that doesn't exist is made under a name of its own beside
// the place where it'll stand, and put there by finish(); destroying the target before leaves nothing behind.
class WorkbookTarget {
 public:
  // Looks for whatever stands in the way of these parts' sheets before anything is changed: raises ServiceError when
  // the workbook can't be added to, when it has a sheet of such a name, and for a new one whose name doesn't end in
  // .xls or .xlsx. `path`: of the machine.
  WorkbookTarget(const std::string& path, const std::vector<Part>& parts);
  ~WorkbookTarget();
  WorkbookTarget(const WorkbookTarget&) = delete;
  WorkbookTarget& operator=(const WorkbookTarget&) = delete;

  // Moves the report that stands at `report` with the operation `move` into the workbook and removes the report. Tells
  // the user on failure.
  template <class Move>
  bool take(TarvelVtrOut_InOut& utility, const char* part, const std::u16string& report, Move&& move) {
    const Boolean moved = move(class_path_);
    if (!moved) complain_of_sheet(part, utility.LastFailure());
    utility.Delete_ASCII(report);
    has_sheet_ = has_sheet_ || moved;
    return bool(moved);
  }
  // Puts a new workbook in its place and prints the path, unless it got no sheet at all. Raises ServiceError.
  // `prints`: whether the path goes to stdout.
  void finish(bool prints);

 private:
  void look_at(const std::string& path, const std::vector<Part>& parts) const;
  void make_new();
  void complain_of_sheet(const char* part, std::string why) const;

  std::string path_;
  std::string new_path_;  // where a new workbook grows; empty for one that existed
  std::u16string class_path_;
  bool has_sheet_ = false;
};

}  // namespace trvtrout::host
