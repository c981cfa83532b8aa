#include "host/part_reports.h"

#include <algorithm>

#include "platform/files/path.h"
#include "services/guard.h"

namespace trvtrout::host {

PartReports::PartReports(Machine& machine, const std::vector<std::string>& names, const std::string& workbook)
    : workbook_path_(workbook) {
  for (const Part& part : document_parts()) {
    if (names.empty() || std::ranges::find(names, part.name) != names.end()) parts_.push_back(&part);
  }
  if (workbook.empty()) return;
  std::vector<std::u16string> sheets;
  for (const Part* part : parts_) sheets.emplace_back(part->sheet.name);
  workbook_.emplace(machine, workbook, sheets);
  std::ranges::reverse(parts_);  // each sheet comes in front of the one before
}

ExitStatus PartReports::run(TarvelVtrOut_InOut& utility, const PartOperation& operation, Output output,
                            bool tells_paths,
                            const std::function<void(const Part&, const std::u16string&, bool)>& done) {
  Progress progress;
  bool all_whole = true;
  for (const Part* const part : parts_) {
    progress.show(std::string(operation.doing) + ' ' + part->name);
    std::u16string path;
    bool whole = bool(operation.write(*part, path));
    // Only counted, or on its way into a workbook, a report has no file of its own.
    const bool has_file = output == Output::kFiles;
    if (!whole) complain_of_part(operation.what, part->name, has_file ? path : u"", utility.LastFailure());
    if (whole && workbook_) {
      whole = workbook_->take(utility, part->name, path,
                              [&](const std::u16string& target) { return operation.move(*part, target, path); });
    }
    progress.show({});
    if (whole && has_file && tells_paths) std::cout << platform::machine_path(path) << std::endl;
    all_whole = all_whole && whole;
    if (done) done(*part, path, whole);
  }
  if (workbook_) all_whole = finish_workbook(all_whole);
  if (workbook_ && all_whole && tells_paths) std::cout << workbook_path_ << std::endl;
  return all_whole ? kFine : kTrouble;
}

bool PartReports::finish_workbook(bool whole) {
  if (!whole) {
    complain(workbook_path_ +
             ": nothing was changed, because not every sheet could be made; use --part to leave parts out");
    return false;
  }
  return guarded([&] { return workbook_->finish(), true; },
                 [](const Failure& failure) { return complain(failure.what), false; });
}

std::vector<std::string> part_names() {
  std::vector<std::string> names;
  std::ranges::transform(document_parts(), std::back_inserter(names), &Part::name);
  return names;
}

bool can_name_reports(const std::string& file) {
  if (file.find('.', file.find_last_of('/') + 1) != std::string::npos) return true;
  complain(file + ": the file's name has no full stop, so its reports can't be named; give it an extension");
  return false;
}

}  // namespace trvtrout::host
