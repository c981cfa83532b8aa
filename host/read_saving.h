#pragma once

#include <string>

#include "host/machine.h"

namespace trvtrout::host {

// Reads `file` as `read` does. One that is damaged is read on behind the damage when `salvage` is asked for: the
// document is then all that can be saved of the file, and the user has been told so on stderr. Nothing is written.
ExitStatus read_saving(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool salvage,
                       std::u16string& structure_list, Boolean is_secondary = False);

}  // namespace trvtrout::host
