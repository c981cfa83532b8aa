#include <algorithm>
#include <iomanip>

#include "host/commands.h"
#include "host/json.h"
#include "host/part_reports.h"
#include "platform/files/path.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

// What the comparison of one part came to.
struct PartResult {
  const char* name;
  bool written;
  std::string report;  // a path of the machine; empty when none was asked for or none is there
  ComparisonCounts counts;
  std::vector<std::u16string> repeated_in_primary, repeated_in_secondary;

  bool different() const { return counts.changed + counts.deleted + counts.added > 0; }
};

PartResult result_of(const TarvelVtrOut_InOut& utility, const Part& part, const std::u16string& report, bool whole,
                     bool with_keys) {
  PartResult result{part.name, whole, platform::machine_path(report), utility.LastCounts(), {}, {}};
  if (with_keys) {
    result.repeated_in_primary = utility.RepeatedKeys(false);
    result.repeated_in_secondary = utility.RepeatedKeys(true);
  }
  return result;
}

ReportNames names_for(const ComparisonTask& task, const std::string& document) {
  return {document, task.output_dir, [](const Part& part) { return part.comparison->desc_name; }, true};
}

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
    out << (result.written ? "" : "  (incomplete)") << '\n';
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

}  // namespace

ExitStatus compare(const Settings& settings, const ComparisonTask& task) {
  if (!can_name_reports(task.primary)) return kTrouble;
  const Output output = task.summary ? Output::kNone : task.workbook.empty() ? Output::kFiles : Output::kHeld;
  Machine machine(settings, output);
  if (output == Output::kFiles && !can_place_reports(machine, names_for(task, task.primary), task.parts)) {
    return kTrouble;
  }
  TarvelVtrOut_InOut utility(machine.services()), primary_alone(machine.services());
  utility.SetReportFolder(platform::class_path(task.output_dir));
  if (!read_whole(machine, utility, task.primary, False) || !read_whole(machine, utility, task.secondary, True)) {
    return kTrouble;
  }
  PartReports reports(machine, task.parts, task.workbook);
  // Colouring asks for the primary document as the one last read.
  const bool colors = task.color && !task.workbook.empty();
  if (colors && !read_whole(machine, primary_alone, task.primary, False)) return kTrouble;
  machine.speak_of(task.primary);  // whose name the reports bear

  std::u16string primary = platform::class_path(task.primary), secondary = platform::class_path(task.secondary);
  const PartOperation comparing{
      .doing = "Comparing",
      .what = "comparison of",
      .write =
          [&](const Part& part, std::u16string& report) {
            // The class asks about this name first, and writes nothing under it.
            machine.reports().pass_over(names_for(task, task.secondary).path(machine, part));
            return (utility.*part.compare)(primary, secondary, report);
          },
      .move =
          [&](const Part& part, const std::u16string& workbook, const std::u16string& report) {
            return utility.XL_Output_Compared(workbook, report, std::u16string(part.sheet.name), &primary_alone,
                                              &utility, colors ? True : False);
          }};
  std::vector<PartResult> results;
  ExitStatus status = reports.run(
      utility, comparing, output, !task.json, [&](const Part& part, const std::u16string& report, bool whole) {
        results.push_back(result_of(utility, part, output == Output::kFiles ? report : u"", whole, task.json));
      });
  if (!task.workbook.empty()) std::ranges::reverse(results);
  if (status == kFine && std::ranges::any_of(results, &PartResult::different)) status = kRemarkable;
  if (task.json) {
    print_json(task, results, status);
  } else {
    print_table(task.summary ? std::cout : std::cerr, results);
  }
  return status;
}

}  // namespace trvtrout::host
