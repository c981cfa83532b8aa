#include "host/workbook_target.h"

#include <algorithm>
#include <cctype>

#include "compare/row_labels.h"
#include "platform/program/sheet_names.h"
#include "platform/program/spreadsheet_error.h"
#include "reports/detail_reports.h"

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

// The ways out that a command has are told before those that a person has in any program.
void require_room(const platform::WorkbookOnDisk& workbook, const std::string& path, const std::u16string& sheet,
                  bool exchanges) {
  const auto& names = workbook.file().sheet_names();
  const auto same = platform::sheet_named(text::to_utf8(sheet), names);
  if (same && !exchanges)
    platform::refuse_file(ErrorNumber::kAutomation, platform::kChange, path,
                          "it has a sheet \"" + names[*same] + "\" already; --replace-sheets exchanges it");
  workbook.require_room_for(sheet);
}

}  // namespace

platform::WorkbookRules workbook_rules(const Settings& settings) {
  platform::WorkbookRules rules{.exchanged = {}, .wait = std::chrono::seconds(settings.wait_seconds)};
  if (settings.replace_sheets) rules.exchanged = {{0, std::string(kReportTitle)}, {1, std::string(kComparisonTitle)}};
  return rules;
}

WorkbookTarget::WorkbookTarget(Machine& machine, const std::string& path,
                               const std::vector<std::u16string>& sheet_names)
    : path_(path) {
  std::string bytes;
  if (platform::name_is_taken(path)) {
    const platform::WorkbookRules& rules = machine.spreadsheet().rules();
    standing_.emplace(path, std::string(), rules);
    for (const std::u16string& name : sheet_names) require_room(*standing_, path, name, !rules.exchanged.empty());
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
