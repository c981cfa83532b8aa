#pragma once

#include <string>
#include <vector>

#include "host/machine.h"

namespace trvtrout::host {

// `vtrout info`: what the file holds, and how each list's numbers stand beside a recount.
ExitStatus info(const Settings& settings, const std::string& file, bool json);

// `vtrout report`: the detail reports of `parts` (all when empty), beside the file.
ExitStatus report(const Settings& settings, const std::string& file, const std::vector<std::string>& parts,
                  bool temporary);

struct ComparisonTask {
  std::string primary, secondary;
  std::vector<std::string> parts;
  bool json = false;
  bool summary = false;  // the counts alone, no files
};

// `vtrout compare`: the comparisons of two documents, beside the primary one, and how many rows have which form.
// kRemarkable when a row is labelled.
ExitStatus compare(const Settings& settings, const ComparisonTask& task);

struct RecoveryTask {
  std::string file;
  std::string output;  // empty: a name beside the file
  std::string log;     // empty: none
  bool json = false;
};

// `vtrout recover`: writes what could be read of the file to a new one and tells what became of each section. The file
// itself is never written, and one that stands where the new one goes is replaced only when the new one is complete.
// kRemarkable when something was lost, kTrouble when nothing was written.
ExitStatus recover(const Settings& settings, const RecoveryTask& task);

}  // namespace trvtrout::host
