#include <algorithm>
#include <iomanip>
#include <optional>

#include "component/parts.h"
#include "host/commands.h"
#include "host/difference_counts.h"
#include "host/json.h"
#include "host/old_format.h"
#include "host/part_reports.h"
#include "host/read_whole.h"
#include "platform/files/path.h"
#include "text/utf8.h"
#include "vtrfile/sections.h"

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

// What the file that was read last holds: an object keeps sections of an earlier file that the last one doesn't have.
vtrfile::DocumentSlots document_of(const TarvelVtrOut_InOut& utility) {
  vtrfile::DocumentSlots document = utility.CurrentSlots();
  vtrfile::for_each_section([&](const auto& section) {
    const auto& parts = utility.LastRead().parts;
    if (std::ranges::find(parts, section.tag, &vtrfile::PartRead::name) == parts.end()) {
      (document.*section.kSlot).clear();
    }
  });
  return document;
}

// Both documents as they were read.
struct BothRead {
  PartSelection parts;  // which can be compared
  CountsBesideComparisons counts;
};

// Nothing when the documents can't be read whole.
std::optional<BothRead> read_both(Machine& machine, TarvelVtrOut_InOut& utility, const ComparisonTask& task) {
  OldFormat old_format;
  std::vector<vtrfile::DocumentSlots> documents;
  for (const auto& [file, is_secondary] : {std::pair(task.primary, False), {task.secondary, True}}) {
    if (!read_whole(machine, utility, file, is_secondary)) return {};
    old_format.look_at(file, utility);
    documents.push_back(document_of(utility));
  }
  return BothRead{old_format.select(task.parts, !task.workbook.empty()),
                  differences_beside_comparisons(documents.front(), documents.back())};
}

void print_table(std::ostream& out, const std::vector<PartResult>& results, const DifferenceCounts& beside_them) {
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
  if (beside_them.all() > 0) {
    out << "and beside what these comparisons look at: " << beside_them.text() << " (`vtrout diff` tells them)\n";
  } else {
    out << "nothing differs beside what these comparisons look at\n";
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

void print_json(const ComparisonTask& task, const std::vector<PartResult>& results, const BothRead& both,
                ExitStatus status) {
  Json parts = Json::object();
  for (const PartResult& result : results) parts[result.name] = to_json(result);
  const Json whole = {{"primary", task.primary},
                      {"secondary", task.secondary},
                      {"different", std::ranges::any_of(results, &PartResult::different)},
                      {"workbook", task.workbook.empty() || status == kTrouble ? Json() : Json(task.workbook)},
                      {"parts", parts},
                      {"notCompared", both.parts.left_out},
                      {"differencesBeside", both.counts.beside.all()}};
  show_json("compare", whole);
}

PairCounts counts_of(const std::vector<PartResult>& results, const DifferenceCounts& beside_them) {
  PairCounts sums{0, 0, 0, 0, beside_them.all()};
  for (const PartResult& result : results) {
    const ComparisonCounts& counts = result.counts;
    std::size_t at = 0;
    for (const std::size_t number : {counts.unchanged, counts.changed, counts.deleted, counts.added}) {
      sums[at++] += number;
    }
  }
  return sums;
}

bool colors_labels(const ComparisonTask& task) { return task.color && !task.workbook.empty(); }

// `utility` has read both documents; colouring asks for the primary one as the one last read. All must outlive it.
PartOperation comparing(Machine& machine, const ComparisonTask& task, TarvelVtrOut_InOut& utility,
                        TarvelVtrOut_InOut& primary_alone) {
  // No report bears the names that are only counted under, and not every file's makes one.
  const auto fname = [&](const std::string& file) {
    return task.summary ? u"summary.vtr" : platform::class_path(file);
  };
  return {.doing = "Comparing",
          .what = "comparison of",
          .write =
              [&, primary = fname(task.primary), secondary = fname(task.secondary)](const Part& part,
                                                                                    std::u16string& report) mutable {
                // The class asks about this name first, and writes nothing under it.
                machine.reports().pass_over(names_for(task, task.secondary).path(machine, part));
                return (utility.*part.compare)(primary, secondary, report);
              },
          .move =
              [&](const Part& part, const std::u16string& workbook, const std::u16string& report) {
                return utility.XL_Output_Compared(workbook, report, std::u16string(part.sheet.name), &primary_alone,
                                                  &utility, colors_labels(task) ? True : False);
              }};
}

}  // namespace

ExitStatus compare(const Settings& settings, const ComparisonTask& task, PairCounts* counts) {
  if (!task.summary && !can_name_reports(task.primary)) return kTrouble;
  const Output output = task.summary ? Output::kNone : task.workbook.empty() ? Output::kFiles : Output::kHeld;
  Machine machine(settings, output);
  if (output == Output::kFiles && !can_place_reports(machine, names_for(task, task.primary), task.parts)) {
    return kTrouble;
  }
  TarvelVtrOut_InOut utility(machine.services()), primary_alone(machine.services());
  utility.SetReportFolder(platform::class_path(task.output_dir));
  auto both = read_both(machine, utility, task);
  if (!both) return kTrouble;
  if (both->parts.compared.empty()) {
    if (task.json) print_json(task, {}, *both, kTrouble);
    return kTrouble;
  }
  PartReports reports(machine, both->parts.compared, task.workbook);
  if (colors_labels(task) && !read_whole(machine, primary_alone, task.primary, False)) return kTrouble;
  machine.speak_of(task.primary);  // whose name the reports bear

  std::vector<PartResult> results;
  const PartOperation operation = comparing(machine, task, utility, primary_alone);
  ExitStatus status = reports.run(
      utility, operation, output, !task.json, [&](const Part& part, const std::u16string& report, bool whole) {
        results.push_back(result_of(utility, part, output == Output::kFiles ? report : u"", whole, task.json));
      });
  if (!task.workbook.empty()) std::ranges::reverse(results);
  const bool labelled = std::ranges::any_of(results, &PartResult::different);
  // When no row of any part is labelled, none of the differences is one that they show.
  if (!labelled && results.size() == document_parts().size()) both->counts.beside = both->counts.all;
  const bool different = both->counts.beside.all() > 0 || labelled;
  if (status == kFine && different) status = kRemarkable;
  if (!both->parts.left_out.empty()) status = kTrouble;
  if (counts) *counts = counts_of(results, both->counts.beside);
  if (task.json) {
    print_json(task, results, *both, status);
  } else if (!counts && (task.summary || !settings.quiet)) {
    print_table(task.summary ? out() : err(), results, both->counts.beside);
  }
  return status;
}

}  // namespace trvtrout::host
