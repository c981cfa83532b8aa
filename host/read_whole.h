#pragma once

#include <string>

#include "host/machine.h"

namespace trvtrout::host {

// Reads one of two documents that are to be compared: kFine, or kTrouble, and the user has been told, when it can't be
// read or is damaged. A file that was damaged where the read passed on isn't compared either. With `salvage` what can
// be saved of a damaged one will do: kRemarkable.
ExitStatus read_to_compare(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool salvage);

// The same without `salvage`.
bool read_whole(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary = False);

}  // namespace trvtrout::host
