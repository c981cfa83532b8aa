#include "host/commands.h"
#include "platform/files/path.h"
#include "platform/program/open_books.h"

namespace trvtrout::host {
namespace {

bool is_comma_text(const std::string& path) { return platform::is_comma_text(text::from_utf8(path)); }

}  // namespace

ExitStatus statistics(const Settings& settings, const StatisticsTask& task) {
  if (!is_comma_text(task.report)) {
    complain(task.report + ": a report's name ends in .csv; rename it");
    return kTrouble;
  }
  if (is_comma_text(task.workbook)) {
    complain(task.workbook + ": that's a report; the workbook, an .xls or .xlsx file, comes first");
    return kTrouble;
  }
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  Progress progress;
  progress.show("Moving " + task.report);
  const Boolean moved = utility.XL_Output_Statistics(
      platform::class_path(task.workbook), platform::class_path(task.report), text::from_utf8(task.sheet_name));
  progress.show({});
  if (!moved) {
    complain(utility.LastFailure());
    return kTrouble;
  }
  std::cout << task.workbook << std::endl;
  return kFine;
}

}  // namespace trvtrout::host
