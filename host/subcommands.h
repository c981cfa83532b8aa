#pragma once

#include <span>

#include "host/options.h"

namespace trvtrout::host {

struct Subcommand {
  const char* name;
  const char* description;
  void (*add_options)(CLI::App& command, Request& request);
  ExitStatus (*run)(const Request& request);
  const char* notes[3];
  const char* examples[2];
  const char* statuses[3];  // null for one that it doesn't end with
};

// In the order in which they are told.
std::span<const Subcommand> subcommands();

}  // namespace trvtrout::host
