#include "host/commands.h"
#include "host/workbook_target.h"
#include "platform/files/path.h"
#include "platform/program/open_books.h"

namespace trvtrout::host {
namespace {

bool is_comma_text(const std::string& path) { return platform::is_comma_text(text::from_utf8(path)); }

}  // namespace

ExitStatus statistics(const Settings& settings, const std::string& workbook, const std::string& report,
                      const std::string& sheet_name) {
  require_workbook_path(workbook);
  if (!is_comma_text(report)) {
    complain(report + ": a report's name ends in .csv; rename it");
    return kTrouble;
  }
  if (is_comma_text(workbook)) {
    complain(workbook + ": that's a report; the workbook, an .xls or .xlsx file, comes first");
    return kTrouble;
  }
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  Progress progress;
  progress.show("Moving " + report);
  const Boolean moved = utility.XL_Output_Statistics(platform::class_path(workbook), platform::class_path(report),
                                                     text::from_utf8(sheet_name));
  progress.show({});
  if (!moved) {
    complain(utility.LastFailure());
    return kTrouble;
  }
  std::cout << workbook << std::endl;
  return kFine;
}

}  // namespace trvtrout::host
