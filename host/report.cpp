#include <algorithm>
#include <optional>

#include "host/commands.h"
#include "host/parts.h"
#include "host/workbook_target.h"
#include "platform/files/path.h"

namespace trvtrout::host {

ExitStatus report(const Settings& settings, const ReportTask& task) {
  if (!can_name_reports(task.file)) return kTrouble;
  std::vector<Part> parts = parts_named(task.parts);
  Machine machine(settings, task.workbook.empty() ? Output::kFiles : Output::kHeld);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  ExitStatus status = read(machine, utility, task.file, structure_list);
  if (status == kTrouble) return status;
  if (utility.LastDamage()) {
    complain(task.file + ": " + damage_text(*utility.LastDamage()) + "; the reports hold what could be read before it");
  }

  std::optional<WorkbookTarget> workbook;
  if (!task.workbook.empty()) {
    workbook.emplace(machine, task.workbook, parts);
    std::ranges::reverse(parts);  // each sheet comes in front of the one before
  }
  Progress progress;
  std::u16string path = platform::class_path(task.file);
  Boolean is_temp = task.temporary ? True : False;
  for (const Part& part : parts) {
    progress.show(std::string("Writing the report on ") + part.name);
    std::u16string report_path;
    const Boolean written = (utility.*part.report)(path, report_path, is_temp);
    // A text that is on its way into a workbook has no file of its own.
    if (!written) complain_of_part("report on", part.name, workbook ? u"" : report_path, utility.LastFailure());
    const bool moved = written && workbook && workbook->take(utility, part.name, report_path, [&](const auto& target) {
      return utility.XL_Output_Statistics(target, report_path, part.sheet_name);
    });
    progress.show({});
    if (!written || (workbook && !moved)) status = kTrouble;
    if (written && !workbook) std::cout << platform::machine_path(report_path) << std::endl;
  }
  if (workbook) {
    if (status == kTrouble) return left_as_it_was(task.workbook);
    workbook->finish();
    std::cout << task.workbook << std::endl;
  }
  return status;
}

}  // namespace trvtrout::host
