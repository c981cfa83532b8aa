#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "host/commands.h"

// The options of `vtrout export` and `vtrout import` that no other subcommand has. `check_path` is the one for all
// paths.
namespace trvtrout::host {

using CheckPath = std::string (*)(const std::string& given);

void add_export_options(CLI::App& command, ExportTask& task, CheckPath check_path);
void add_import_options(CLI::App& command, ImportTask& task, CheckPath check_path);

}  // namespace trvtrout::host
