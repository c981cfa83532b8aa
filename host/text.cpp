#include "host/commands.h"
#include "host/read_saving.h"
#include "host/terminal/value_lines.h"
#include "vtrfile/value_types.h"

namespace trvtrout::host {

ExitStatus text(const Settings& settings, const TextTask& task) {
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  const ExitStatus status = read_saving(machine, utility, task.file, task.salvage, structure_list);
  if (status == kTrouble) return status;
  const auto tell = [](const std::string& line) { std::cout << line << '\n'; };
  for_each_line(machine.locale(), header_of(utility.CurrentSlots()), tell, std::string(vtrfile::PartRead::kHeader));
  for (const vtrfile::SectionValue& section : sections_of(utility.CurrentSlots())) {
    for_each_line(machine.locale(), section.record, tell, std::string(section.tag));
  }
  if (const auto& damage = utility.LastDamage()) complain(task.file + ": " + damage_text(*damage));
  return status;
}

}  // namespace trvtrout::host
