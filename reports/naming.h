#pragma once

#include <string>

#include "reports/host_services.h"

namespace trvtrout {

// What the naming step settled.
struct OutputName {
  std::u16string path;       // empty when the step failed
  std::u16string base_name;  // the source file's name up to its first full stop
  // The user answered Cancel about the file that stands at `path`: it must not be touched.
  bool abandoned = false;
};

// The path of a report on the file `fname`: beside it, named after it, `desc_name` and (not `is_temp`) the moment. Asks
// about an existing file; after No the path is what the save dialog gave, unchanged. Raises nothing: an `fname` without
// a full stop in its file name gives an empty path.
OutputName GetReportFileName(const HostServices& services, const std::u16string& fname, const std::u16string& desc_name,
                             bool is_temp);

// The same for a workbook ("Statistics", "Compared"), a rewritten document ("Recovered") or a log ("Log"). For any
// other `desc_name` the path is empty and no question is put.
OutputName GetOutputFileName(const HostServices& services, const std::u16string& fname,
                             const std::u16string& desc_name);

}  // namespace trvtrout
