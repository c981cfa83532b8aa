#include "host/commands.h"
#include "host/part_reports.h"
#include "host/read_saving.h"
#include "platform/files/path.h"

namespace trvtrout::host {

ExitStatus report(const Settings& settings, const ReportTask& task) {
  if (!can_name_reports(task.file)) return kTrouble;
  const Output output = task.workbook.empty() ? Output::kFiles : Output::kHeld;
  Machine machine(settings, output);
  const ReportNames names{task.file, task.output_dir, [](const Part& part) { return part.detail_report->desc_name; },
                          task.temporary};
  if (output == Output::kFiles && !can_place_reports(machine, names, task.parts)) return kTrouble;
  TarvelVtrOut_InOut utility(machine.services());
  utility.SetReportFolder(platform::class_path(task.output_dir));
  std::u16string structure_list;
  const ExitStatus status = read_saving(machine, utility, task.file, task.salvage, structure_list);
  if (status == kTrouble) return status;
  if (utility.LastDamage()) {
    complain(task.file + ": " + damage_text(*utility.LastDamage()) +
             (utility.LastSalvage() ? "; the reports hold what could be saved"
                                    : "; the reports hold what could be read up to there"));
  }

  std::u16string path = platform::class_path(task.file);
  Boolean is_temp = task.temporary ? True : False;
  const PartOperation reporting{
      .doing = "Writing the report on",
      .what = "report on",
      .write = [&](const Part& part,
                   std::u16string& report_path) { return (utility.*part.report)(path, report_path, is_temp); },
      .move =
          [&](const Part& part, const std::u16string& workbook, const std::u16string& report_path) {
            return utility.XL_Output_Statistics(workbook, report_path, std::u16string(part.sheet.name));
          }};
  PartReports reports(machine, task.parts, task.workbook);
  return reports.run(utility, reporting, output, true) == kTrouble ? kTrouble : status;
}

}  // namespace trvtrout::host
