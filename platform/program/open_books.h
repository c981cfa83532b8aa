#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/program/edited_sheet.h"
#include "platform/program/workbook_on_disk.h"
#include "services/host_services.h"

namespace trvtrout::platform {

// Whether a spreadsheet takes the file for a comma-separated text: by its extension.
bool is_comma_text(std::u16string_view path);

// A text or a workbook that an application has open.
class OpenBook {
 public:
  // Messages name a workbook `told_as`, if that isn't empty. Raises ServiceError.
  OpenBook(const std::u16string& path, Files& files, Locale& locale, const std::string& told_as,
           const WorkbookRules& rules);

  // The sheet that was made of a text or added to a workbook. Raises ServiceError when there is none.
  EditedSheet& sheet();
  // The changes that follow raise ServiceError, also for a text and for a workbook without an added sheet.
  // Adds an empty sheet with a name that is free. A second one is refused.
  void add_sheet();
  // Puts `cells` into the sheet that was added.
  void paste(spreadsheet::Sheet cells, Locale& locale);
  // With the name of a sheet that gives way to it, the added one takes over that one's place once it's saved.
  void rename(const std::u16string& name);
  void restyle(const std::vector<Area>& areas, const std::function<void(spreadsheet::CellStyle&)>& change);
  // Only under the name that the workbook has.
  void save_as(const std::u16string& path);

 private:
  void require_added() const;

  std::u16string path_;
  std::string told_as_;
  std::unique_ptr<WorkbookOnDisk> workbook_;  // null for a text
  std::unique_ptr<EditedSheet> sheet_;
  std::string sheet_name_;
};

}  // namespace trvtrout::platform
