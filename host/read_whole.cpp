#include "host/read_whole.h"

#include "host/read_saving.h"

namespace trvtrout::host {

namespace {

ExitStatus read_or_refuse(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool salvage,
                          Boolean is_secondary) {
  std::u16string structure_list;
  const ExitStatus status = read_saving(machine, utility, file, salvage, structure_list, is_secondary);
  if (status != kRemarkable || utility.LastSalvage()) return status;
  const auto& damage = utility.LastDamage();
  complain(file + ": " + (damage ? damage_text(*damage) + "; it" : "it") +
           " can't be compared: see `vtrout info`, and `vtrout recover` for what can be saved");
  return kTrouble;
}

}  // namespace

ExitStatus read_to_compare(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool salvage) {
  return read_or_refuse(machine, utility, file, salvage, False);
}

bool read_whole(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary) {
  return read_or_refuse(machine, utility, file, false, is_secondary) == kFine;
}

}  // namespace trvtrout::host
