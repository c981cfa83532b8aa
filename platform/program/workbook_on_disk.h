#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "platform/files/file_handle.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::platform {

// How workbooks are changed.
struct WorkbookRules {
  // Sheets that give way to a new one of their name, which takes over their place; none if it's empty.
  std::vector<spreadsheet::SheetMark> exchanged = {};
  // For a workbook that another program has locked.
  std::chrono::seconds wait{0};
};

// A workbook that is open for a change: locked for other programs until it's destroyed. All members raise ServiceError,
// naming the file and the reason.
class WorkbookOnDisk {
 public:
  // `path`: of the machine; a link is followed. Messages name it `told_as`, if that isn't empty. Refuses what can't be
  // read or changed, what another program holds, and what is no workbook that a sheet can be added to.
  explicit WorkbookOnDisk(const std::string& path, const std::string& told_as = {}, WorkbookRules rules = {});

  const spreadsheet::WorkbookFile& file() const { return *file_; }
  // The file as it was opened, for a copy of it.
  std::string bytes() const;
  // Refuses a name that no sheet can be added under, and that of a sheet that can't be exchanged.
  void require_room_for(const std::u16string& sheet_name) const;
  // Refuses a file that another program has changed or opened since.
  void require_unchanged() const;
  // Puts the workbook with `sheet`, or with its content in the sheet of that name, in its place; on failure it's as it
  // was.
  void save_with(const spreadsheet::Sheet& sheet);

 private:
  std::string path_;
  std::string told_as_;
  WorkbookRules rules_;
  platform::FileHandle handle_;
  struct stat opened_;
  std::unique_ptr<spreadsheet::WorkbookFile> file_;
};

}  // namespace trvtrout::platform
