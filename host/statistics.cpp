#include "host/commands.h"
#include "platform/files/path.h"

namespace trvtrout::host {

ExitStatus statistics(const Settings& settings, const std::string& workbook, const std::string& report,
                      const std::string& sheet_name) {
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  Progress progress;
  progress.show("Moving " + report);
  const Boolean moved = utility.XL_Output_Statistics(platform::class_path(workbook), platform::class_path(report),
                                                     platform::from_utf8(sheet_name));
  progress.show({});
  if (!moved) {
    complain(utility.LastFailure());
    return kTrouble;
  }
  std::cout << workbook << std::endl;
  return kFine;
}

}  // namespace trvtrout::host
