#include "host/part_reports.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/files/path.h"
#include "platform/files/replacement.h"
#include "reports/naming.h"
#include "services/guard.h"

namespace trvtrout::host {
namespace {

std::vector<const Part*> chosen_parts(const std::vector<std::string>& names) {
  std::vector<const Part*> chosen;
  for (const Part& part : document_parts()) {
    if (names.empty() || std::ranges::find(names, part.name) != names.end()) chosen.push_back(&part);
  }
  return chosen;
}

bool folder_can_be_written(const ReportNames& names) {
  const std::size_t slash = names.document.rfind('/');
  const std::string beside = slash == std::string::npos ? "." : names.document.substr(0, slash + 1);
  // As the class will have it: a backslash is a "/".
  const std::string given = platform::machine_path(platform::class_path(names.folder));
  return guarded([&] { return platform::require_writable_folder(given.empty() ? beside : given), true; },
                 [](const Failure& failure) {
                   complain(failure.what + "; name another folder with --output-dir");
                   return false;
                 });
}

}  // namespace

std::u16string ReportNames::path(Machine& machine, const Part& part) const {
  return guarded(
      [&] {
        return report_path(machine.locale(), platform::class_path(document), desc_name(part), is_temp,
                           platform::class_path(folder));
      },
      [](const Failure&) { return std::u16string(); });
}

bool can_place_reports(Machine& machine, const ReportNames& names, const std::vector<std::string>& parts) {
  std::error_code none;
  // Whoever reads the document will tell that it isn't there.
  if (names.folder.empty() && !std::filesystem::exists(names.document, none)) return true;
  if (!folder_can_be_written(names)) return false;
  const char* const reason = machine.keeps_files();
  if (!reason) return true;
  const auto file_system = machine.services().files.CreateFileSystemObject();
  std::vector<std::u16string> standing;
  for (const Part* const part : chosen_parts(parts)) {
    if (std::u16string path = names.path(machine, *part); file_system->FileExists(path))
      standing.push_back(std::move(path));
  }
  if (standing.empty()) return true;
  const std::size_t more = standing.size() - 1;
  complain(platform::machine_path(standing.front()) +
           (more == 0 ? " exists" : " and " + std::to_string(more) + " more of the reports exist") + " already, and " +
           reason + "; nothing was written: use --yes to overwrite, or --output-dir for another folder");
  return false;
}

PartReports::PartReports(Machine& machine, const std::vector<std::string>& names, const std::string& workbook)
    : machine_(machine), parts_(chosen_parts(names)), workbook_path_(workbook) {
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
    const Written written = write(utility, operation, *part, output);
    const std::u16string& path = written.path;
    bool whole = written.whole;
    if (whole && workbook_) {
      whole = workbook_->take(utility, part->name, path,
                              [&](const std::u16string& target) { return operation.move(*part, target, path); });
    }
    progress.show({});
    if (whole && output == Output::kFiles && tells_paths) out() << platform::machine_path(path) << std::endl;
    all_whole = all_whole && whole;
    if (done) done(*part, path, whole);
  }
  if (workbook_) all_whole = finish_workbook(all_whole);
  if (workbook_ && all_whole && tells_paths) out() << workbook_path_ << std::endl;
  return all_whole ? kFine : kTrouble;
}

PartReports::Written PartReports::write(TarvelVtrOut_InOut& utility, const PartOperation& operation, const Part& part,
                                        Output output) {
  std::u16string path;
  bool whole = bool(operation.write(part, path));
  std::string failure = whole ? "" : utility.LastFailure();
  // Only counted, or on its way into a workbook, a report has no file of its own.
  if (output != Output::kFiles) {
    if (!whole) complain_of_part(operation.what, part.name, u"", failure);
    return {path, whole};
  }
  using platform::Placed;
  const Placed placed = guarded([&] { return machine_.reports().place(whole); },
                                [&](const Failure& not_placed) {
                                  failure += (whole ? "" : "; ") + not_placed.what;
                                  whole = false;
                                  return Placed::kNothing;
                                });
  if (placed == Placed::kOldStays) failure += "; the file that stood there is as it was";
  if (!whole) complain_of_part(operation.what, part.name, path, failure);
  return {placed == Placed::kText ? path : u"", whole};
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
