#pragma once

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "services/host_services.h"

namespace trvtrout {

// What the naming step settled.
struct OutputName {
  std::u16string path;  // empty when the step failed
  // The source file's name up to its first full stop; none when it has no full stop.
  std::optional<std::u16string> base_name;
  // The user answered Cancel about the file that stands at `path`: it must not be touched.
  bool abandoned = false;
  std::string failure;  // why the path is empty, for people
  bool asked = false;   // a file stood there, and the user has agreed to this path or chosen another
};

// The file of a report that an operation writes.
struct ReportFile {
  std::u16string& path;
  const std::u16string& folder;                  // where it goes; empty: beside the document
  std::unique_ptr<TextStream> stream = nullptr;  // still open when writing to it raised

  // Creates the file under a settled name. Raises ServiceError and what keeps a name from being used: it must not be
  // empty, nor be one of the documents at `sources`, which are never written over.
  void create(const HostServices& services, const OutputName& name,
              std::initializer_list<const std::u16string*> sources);
};

// The path of a report on the file `fname`: in `folder`, or beside the file if that's empty, named after it,
// `desc_name` and (not `is_temp`) the present moment. Raises invalid_argument for an `fname` without a full stop in its
// file name.
std::u16string report_path(Locale& locale, const std::u16string& fname, std::u16string_view desc_name, bool is_temp,
                           const std::u16string& folder);

// That path. Asks about an existing file; after No the path is what the save dialog gave, unchanged. Raises nothing: an
// `fname` without a full stop gives an empty path.
OutputName GetReportFileName(const HostServices& services, const std::u16string& fname, std::u16string_view desc_name,
                             bool is_temp, const std::u16string& folder);

// The same for a workbook ("Statistics", "Compared"), a rewritten document ("Recovered") or a log ("Log"). For any
// other `desc_name` the path is empty and no question is put.
OutputName GetOutputFileName(const HostServices& services, const std::u16string& fname,
                             const std::u16string& desc_name);

// The same with a path that was chosen already.
OutputName ConfirmOutputFileName(const HostServices& services, const std::u16string& fname,
                                 const std::u16string& desc_name, const std::u16string& path);

}  // namespace trvtrout
