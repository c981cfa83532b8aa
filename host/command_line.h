#pragma once

#include <memory>

#include "host/machine.h"

namespace CLI {
class App;
}

namespace trvtrout::host {

struct Request;

// All arguments that there are, with their descriptions. `request` gets those that are parsed and must outlive it.
std::unique_ptr<CLI::App> make_app(Request& request);

// Takes the arguments apart and runs the subcommand that they name: its exit status. Arguments that can't be understood
// and output that can't be written are told on stderr, as kTrouble. Raises what the subcommand raises.
ExitStatus run_command_line(int argc, const char* const* argv);

}  // namespace trvtrout::host
