#pragma once

#include <memory>
#include <string>
#include <sys/stat.h>

#include "platform/files/file_handle.h"
#include "platform/spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet {

// A workbook that is open for a change: locked for other programs until it's destroyed.
class WorkbookOnDisk {
 public:
  // `path`: of the machine. Raises ServiceError, naming the file and the reason, when it can't be read or changed, when
  // another program holds it, and when it's no workbook that a sheet can be added to.
  explicit WorkbookOnDisk(std::string path);

  const WorkbookFile& file() const { return *file_; }
  // Raises ServiceError, with the reason, unless a sheet can be added under this name.
  void require_free(const std::u16string& sheet_name) const;
  // Puts the workbook with `sheet` in its place; on failure it's as it was. Raises ServiceError, also when the file has
  // been changed since it was opened.
  void save_with(const Sheet& sheet);

 private:
  std::string path_;
  platform::FileHandle handle_;
  struct stat opened_ {};
  std::unique_ptr<WorkbookFile> file_;
};

}  // namespace trvtrout::spreadsheet
