#pragma once

#include <string>

#include "host/machine.h"

namespace trvtrout::host {

// Reads one of two documents that are to be compared. False, and the user has been told, when it can't be read or is
// damaged: a file that was damaged where the read passed on isn't compared either.
bool read_whole(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary = False);

}  // namespace trvtrout::host
