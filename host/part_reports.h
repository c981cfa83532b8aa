#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "component/parts.h"
#include "host/machine.h"
#include "host/workbook_target.h"

namespace trvtrout::host {

// What the reports on a document are called, and where they go; paths of the machine.
struct ReportNames {
  const std::string& document;
  const std::string& folder;  // empty: beside the document
  std::u16string_view (*desc_name)(const Part& part);
  bool is_temp;

  // The path of a report as the class makes it at this moment; empty for a document whose name has no full stop.
  std::u16string path(Machine& machine, const Part& part) const;
};

// Whether the reports on these parts (all when empty) can be put in their places: their folder can be written, and no
// file is in the way that nobody can be asked about. Tells the user when not. Changes nothing.
bool can_place_reports(Machine& machine, const ReportNames& names, const std::vector<std::string>& parts);

// What is done for each part, in words for people, and the operations that do it.
struct PartOperation {
  const char* doing;  // "Comparing"
  const char* what;   // "comparison of"
  // Writes the part's report; `path` gets its path.
  std::function<Boolean(const Part& part, std::u16string& path)> write;
  // Moves the report into a sheet of the workbook.
  std::function<Boolean(const Part& part, const std::u16string& workbook, const std::u16string& report)> move;
};

// The reports or comparisons of several parts, one after the other: each in a file of its own, or in the sheets of one
// workbook.
class PartReports {
 public:
  // `names`: of the parts, all when empty. `workbook`: a path of the machine, empty for none; raises ServiceError when
  // it can't take the sheets.
  PartReports(Machine& machine, const std::vector<std::string>& names, const std::string& workbook);

  // Calls done(part, path, whole) after each; the sheets of a workbook are made from the last part to the first. Paths
  // of what was written go to stdout if `tells_paths`; `output` says what becomes of the reports: of one in a file,
  // `path` is empty when it isn't there. The user is told of each that isn't whole; a file that stood in its place then
  // stays as it was, and so does the workbook. kTrouble or kFine.
  ExitStatus run(TarvelVtrOut_InOut& utility, const PartOperation& operation, Output output, bool tells_paths,
                 const std::function<void(const Part& part, const std::u16string& path, bool whole)>& done = {});

 private:
  struct Written {
    std::u16string path;
    bool whole;
  };
  Written write(TarvelVtrOut_InOut& utility, const PartOperation& operation, const Part& part, Output output);
  bool finish_workbook(bool whole);

  Machine& machine_;
  std::vector<const Part*> parts_;
  std::string workbook_path_;
  std::optional<WorkbookTarget> workbook_;
};

std::vector<std::string> part_names();

// Whether a report beside the file can have a name: it is made of what stands in front of the first full stop. Tells
// the user when not.
bool can_name_reports(const std::string& file);

}  // namespace trvtrout::host
