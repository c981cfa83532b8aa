#include <algorithm>
#include <iomanip>
#include <optional>

#include "host/commands.h"
#include "host/json.h"
#include "host/parts.h"
#include "host/workbook_target.h"
#include "platform/files/path.h"
#include "services/guard.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

// What the comparison of one part came to.
struct PartResult {
  const char* name;
  bool written;
  std::string report;  // a path of the machine; empty when none was asked for
  ComparisonCounts counts;
  std::vector<std::u16string> repeated_in_primary, repeated_in_secondary;

  bool different() const { return counts.changed + counts.deleted + counts.added > 0; }
};

// Reads one of the two documents; one that is damaged, or was damaged where the read passed on, isn't compared.
bool read_whole(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary) {
  std::u16string structure_list;
  const ExitStatus status = read(machine, utility, file, structure_list, is_secondary);
  if (status == kRemarkable) {
    const auto& damage = utility.LastDamage();
    complain(file + ": " + (damage ? damage_text(*damage) + "; it" : "it") +
             " can't be compared: see `vtrout info`, and `vtrout recover` for what can be saved");
  }
  return status == kFine;
}

void print_table(std::ostream& out, const std::vector<PartResult>& results) {
  constexpr int kNameWidth = 10, kNumberWidth = 11;
  out << std::left << std::setw(kNameWidth) << "part" << std::right;
  for (const char* head : {"unchanged", "changed", "deleted", "added"}) out << std::setw(kNumberWidth) << head;
  out << '\n';
  for (const PartResult& result : results) {
    const ComparisonCounts& counts = result.counts;
    out << std::left << std::setw(kNameWidth) << result.name << std::right;
    for (const std::size_t number : {counts.unchanged, counts.changed, counts.deleted, counts.added}) {
      out << std::setw(kNumberWidth) << number;
    }
    out << (result.written ? "" : "  (not whole)") << '\n';
  }
}

Json to_json(const std::vector<std::u16string>& keys) {
  Json array = Json::array();
  for (const auto& key : keys) array.push_back(text::to_utf8(key));
  return array;
}

Json to_json(const PartResult& result) {
  return {{"result", result.written},
          {"report", result.report.empty() ? Json() : Json(result.report)},
          {"unchanged", result.counts.unchanged},
          {"changed", result.counts.changed},
          {"deleted", result.counts.deleted},
          {"added", result.counts.added},
          {"repeatedKeys",
           {{"primary", to_json(result.repeated_in_primary)}, {"secondary", to_json(result.repeated_in_secondary)}}}};
}

void print_json(const ComparisonTask& task, const std::vector<PartResult>& results, ExitStatus status) {
  Json parts = Json::object();
  for (const PartResult& result : results) parts[result.name] = to_json(result);
  const Json whole = {{"primary", task.primary},
                      {"secondary", task.secondary},
                      {"different", std::ranges::any_of(results, &PartResult::different)},
                      {"workbook", task.workbook.empty() || status == kTrouble ? Json() : Json(task.workbook)},
                      {"parts", parts}};
  show_json(whole);
}

// The way of the comparisons into the sheets of a workbook, when one is wanted.
class ComparisonSheets {
 public:
  // Raises ServiceError when the workbook can't take the sheets.
  ComparisonSheets(Machine& machine, const ComparisonTask& task)
      : task_(task), parts_(parts_named(task.parts)), primary_(machine.services()) {
    if (task.workbook.empty()) return;
    workbook_.emplace(machine, task.workbook, parts_);
    std::ranges::reverse(parts_);  // each sheet comes in front of the one before
  }

  // Colouring asks for the primary document as the one last read. False when it can't be read, which the user was told.
  bool prepare(Machine& machine) {
    return !workbook_ || !task_.color || read_whole(machine, primary_, task_.primary, False);
  }

  // In the order in which they are to be compared.
  const std::vector<Part>& parts() const { return parts_; }
  // Moves the comparison at `report` that `utility` has made; True when none is to be moved.
  bool take(TarvelVtrOut_InOut& utility, const Part& part, const std::u16string& report) {
    return !workbook_ || workbook_->take(utility, part.name, report, [&](const auto& target) {
      return utility.XL_Output_Compared(target, report, part.sheet_name, &primary_, &utility,
                                        task_.color ? True : False);
    });
  }
  // Puts the results into the order of the sheets, and these into the workbook unless one is missing. The status of
  // the whole then.
  ExitStatus finish(std::vector<PartResult>& results, ExitStatus status) {
    if (!workbook_) return status;
    std::ranges::reverse(results);
    if (status == kTrouble) return left_as_it_was(task_.workbook);
    const bool done = guarded([&] { return workbook_->finish(), true; },
                              [](const Failure& failure) { return complain(failure.what), false; });
    if (!done) return kTrouble;
    if (!task_.json) std::cout << task_.workbook << std::endl;
    return status;
  }

 private:
  const ComparisonTask& task_;
  std::vector<Part> parts_;
  TarvelVtrOut_InOut primary_;
  std::optional<WorkbookTarget> workbook_;
};

}  // namespace

ExitStatus compare(const Settings& settings, const ComparisonTask& task) {
  if (!can_name_reports(task.primary)) return kTrouble;
  const Output output = task.summary ? Output::kNone : task.workbook.empty() ? Output::kFiles : Output::kHeld;
  Machine machine(settings, output);
  TarvelVtrOut_InOut utility(machine.services());
  if (!read_whole(machine, utility, task.primary, False) || !read_whole(machine, utility, task.secondary, True)) {
    return kTrouble;
  }
  ComparisonSheets sheets(machine, task);
  if (!sheets.prepare(machine)) return kTrouble;
  machine.speak_of(task.primary);  // whose name the reports bear

  ExitStatus status = kFine;
  std::vector<PartResult> results;
  Progress progress;
  std::u16string primary = platform::class_path(task.primary), secondary = platform::class_path(task.secondary);
  for (const Part& part : sheets.parts()) {
    progress.show(std::string("Comparing ") + part.name);
    std::u16string report;
    const Boolean written = (utility.*part.compare)(primary, secondary, report);
    PartResult& result = results.emplace_back(PartResult{part.name, bool(written), {}, utility.LastCounts(), {}, {}});
    result.written = written && sheets.take(utility, part, report);
    progress.show({});
    if (output == Output::kFiles) result.report = platform::machine_path(report);
    // Only counted, or on its way into a workbook, a comparison has no file of its own.
    const std::u16string where = output == Output::kFiles ? report : u"";
    if (!written) complain_of_part("comparison of", part.name, where, utility.LastFailure());
    if (!result.written) {
      status = kTrouble;
    } else if (status == kFine && result.different()) {
      status = kRemarkable;
    }
    if (task.json) {
      result.repeated_in_primary = utility.RepeatedKeys(false);
      result.repeated_in_secondary = utility.RepeatedKeys(true);
    } else if (written && output == Output::kFiles) {
      std::cout << result.report << std::endl;
    }
  }
  status = sheets.finish(results, status);
  if (task.json) {
    print_json(task, results, status);
  } else {
    print_table(task.summary ? std::cout : std::cerr, results);
  }
  return status;
}

}  // namespace trvtrout::host
