#pragma once

#include "host/machine.h"

namespace trvtrout::host {

// Takes the arguments apart and runs the subcommand that they name: its exit status. Arguments that can't be understood
// and output that can't be written are told on stderr, as kTrouble. Raises what the subcommand raises.
ExitStatus run_command_line(int argc, const char* const* argv);

}  // namespace trvtrout::host
