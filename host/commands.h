#pragma once

#include <string>
#include <vector>

#include "host/machine.h"

namespace trvtrout::host {

// `vtrout info`: what the file holds, and how each list's numbers stand beside a recount.
ExitStatus info(const Settings& settings, const std::string& file, bool json);

// The names that --part takes, in the order of the reports.
std::vector<std::string> part_names();

// `vtrout report`: the detail reports of `parts` (all when empty), beside the file.
ExitStatus report(const Settings& settings, const std::string& file, const std::vector<std::string>& parts,
                  bool temporary);

}  // namespace trvtrout::host
