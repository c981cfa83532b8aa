#include "host/commands.h"
#include "host/parts.h"
#include "platform/files/path.h"

namespace trvtrout::host {

ExitStatus report(const Settings& settings, const std::string& file, const std::vector<std::string>& parts,
                  bool temporary) {
  if (!can_name_reports(file)) return kTrouble;
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  ExitStatus status = read(machine, utility, file, structure_list);
  if (status == kTrouble) return status;
  if (status == kRemarkable) {
    complain(file + ": " + damage_text(*utility.LastDamage()) + "; the reports hold what could be read before it");
  }

  Progress progress;
  std::u16string path = platform::class_path(file);
  Boolean is_temp = temporary ? True : False;
  for (const Part& part : parts_named(parts)) {
    progress.show(std::string("Writing the report on ") + part.name);
    std::u16string report_path;
    const Boolean written = (utility.*part.report)(path, report_path, is_temp);
    progress.show({});
    if (written) {
      std::cout << platform::machine_path(report_path) << std::endl;
    } else {
      complain_of_part("report on", part.name, report_path, utility.LastFailure());
      status = kTrouble;
    }
  }
  return status;
}

}  // namespace trvtrout::host
