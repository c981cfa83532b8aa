#include "host/read_whole.h"

namespace trvtrout::host {

bool read_whole(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary) {
  std::u16string structure_list;
  const ExitStatus status = read(machine, utility, file, structure_list, is_secondary);
  if (status == kRemarkable) {
    const auto& damage = utility.LastDamage();
    complain(file + ": " + (damage ? damage_text(*damage) + "; it" : "it") +
             " can't be compared: see `vtrout info`, and `vtrout recover` for what can be saved");
  }
  return status == kFine;
}

}  // namespace trvtrout::host
