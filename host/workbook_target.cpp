#include "host/workbook_target.h"

#include <algorithm>
#include <cctype>

namespace trvtrout::host {
namespace {

using spreadsheet::WorkbookFormat;

WorkbookFormat format_by_name(const std::string& path) {
  std::string extension = path.substr(std::min(path.rfind('.'), path.size()));
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  if (extension == ".xls") return WorkbookFormat::kBiff8;
  if (extension == ".xlsx") return WorkbookFormat::kOoxml;
  platform::refuse_file(ErrorNumber::kBadFileName, "make", path, "must end in .xlsx or .xls");
}

}  // namespace

void require_workbook_path(const std::string& path) {
  if (path.find('\\') == std::string::npos) return;
  platform::refuse_file(ErrorNumber::kBadFileName, "change", path,
                        "a workbook's path can't contain a backslash; rename it");
}

WorkbookTarget::WorkbookTarget(Machine& machine, const std::string& path,
                               const std::vector<std::u16string>& sheet_names)
    : path_(path) {
  require_workbook_path(path);
  std::string bytes;
  if (platform::name_is_taken(path)) {
    standing_.emplace(path);
    for (const std::u16string& name : sheet_names) standing_->require_free(name);
    bytes = standing_->bytes();
  } else {
    bytes = spreadsheet::empty_workbook(format_by_name(path));
  }
  content_.emplace(path);
  content_->write(bytes);
  content_->finish();
  machine.spreadsheet().tell_as(content_->temporary_path(), path);
}

void WorkbookTarget::finish() {
  if (!standing_) return content_->commit_new();
  standing_->require_unchanged();
  content_->commit();
}

}  // namespace trvtrout::host
