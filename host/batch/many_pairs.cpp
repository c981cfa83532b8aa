// `vtrout compare` and `diff` of two folders: each pair of files is one call of the subcommand.
#include <algorithm>

#include "host/batch/batch.h"
#include "host/batch/folder_pairs.h"
#include "host/commands.h"
#include "host/json.h"

namespace trvtrout::host {
namespace {

struct Folders {
  std::string old_folder, new_folder;
};

// What is done with each pair, and how it's told at the end.
struct EachPair {
  const char* subcommand;
  bool json;
  std::ostream* table;  // null for none
  PairTable rows;
  std::function<ExitStatus(const Settings& settings, std::size_t number, const std::string& old_file,
                           const std::string& new_file, PairCounts& counts)>
      work;
};

void show_unpaired(const Folders& folders, const FolderPair& pair) {
  const auto file = [&](bool is_there, const std::string& folder) {
    return is_there ? Json(in_folder(folder, pair.path)) : Json();
  };
  show_json("unpaired", {{"path", pair.path},
                         {"old", file(pair.in_old, folders.old_folder)},
                         {"new", file(pair.in_new, folders.new_folder)},
                         {"different", true}});
}

const char* why_unpaired(const FolderPair& pair) {
  return pair.in_old ? "only in the old folder" : "only in the new folder";
}

ExitStatus for_each_pair(const Settings& settings, const InputOptions& options, const Folders& folders,
                         const PairList& list, EachPair& each) {
  if (list.pairs.empty()) return list.is_whole ? kFine : kTrouble;
  Batch batch{.subcommand = each.subcommand, .remark = "different"};
  for (const FolderPair& pair : list.pairs) batch.files.push_back(pair.path);
  std::vector<std::optional<PairCounts>> counts(list.pairs.size());
  batch.work = [&](const Settings& shared, std::size_t number) {
    const FolderPair& pair = list.pairs[number];
    if (!pair.in_old || !pair.in_new) {
      note_complaint(why_unpaired(pair));
      if (each.json) show_unpaired(folders, pair);
      return kRemarkable;
    }
    const std::string old_file = in_folder(folders.old_folder, pair.path);
    PairCounts counted{};
    const ExitStatus status = each.work(shared, number, old_file, in_folder(folders.new_folder, pair.path), counted);
    if (status != kTrouble) counts[number] = counted;
    if (status == kTrouble && each.json && !CaughtOutput::has_data()) show_trouble_json(old_file);
    return status;
  };
  batch.told = [&](std::size_t number, FileOutcome& outcome) {
    const FolderPair& pair = list.pairs[number];
    each.rows.add(pair.path, counts[number],
                  !pair.in_old || !pair.in_new ? why_unpaired(pair)
                  : outcome.status == kTrouble ? "not compared"
                                               : nullptr);
  };
  const BatchEnd end = run_batch(settings, options, batch);
  if (each.table) each.rows.print(*each.table);
  return std::max(finish_batch(end), list.is_whole ? kFine : kTrouble);
}

// Whether two files or two folders are there to be compared; the user is told when not.
bool are_alike(const std::string& one, const std::string& other) {
  if (is_folder(one) == is_folder(other)) return true;
  const auto& [folder, file] = is_folder(one) ? std::tie(one, other) : std::tie(other, one);
  complain(folder + " is a folder and " + file + " isn't; two files can be compared, or two folders");
  return false;
}

}  // namespace

ExitStatus compare_files(const Settings& settings, const InputOptions& options, const ComparisonTask& given) {
  if (!are_alike(given.primary, given.secondary)) return kTrouble;
  if (!is_folder(given.primary)) {
    return run_one(options, "compare", given.primary, [&] { return compare(settings, given); });
  }
  if (!given.workbook.empty()) {
    complain("--workbook takes the comparison of two files; the sheets of several would have the same names");
    return kTrouble;
  }
  const PairList list = pair_folders(given.primary, given.secondary, options.recursive);
  std::vector<Input> primaries;
  for (const FolderPair& pair : list.pairs) primaries.push_back(found_in(given.primary, pair.path));
  const std::vector<std::size_t> owners = owners_of_names(primaries, given.output_dir);
  EachPair each{.subcommand = "compare",
                .json = given.json,
                .table = given.json       ? nullptr
                         : given.summary  ? &out()
                         : settings.quiet ? nullptr
                                          : &err(),
                .rows = PairTable({"unchanged", "changed", "deleted", "added", "beside"})};
  each.work = [&](const Settings& shared, std::size_t number, const std::string& old_file, const std::string& new_file,
                  PairCounts& counts) {
    if (!given.summary && !has_own_names(primaries, owners, number)) return kTrouble;
    ComparisonTask task = given;
    task.primary = old_file;
    task.secondary = new_file;
    task.output_dir = folder_for(given.output_dir, primaries[number]);
    return compare(shared, task, &counts);
  };
  return for_each_pair(settings, options, {given.primary, given.secondary}, list, each);
}

ExitStatus diff_files(const Settings& settings, const InputOptions& options, const DiffTask& given) {
  const std::vector<std::string>& files = given.arguments;
  if (files.size() == 2 && !are_alike(files[0], files[1])) return kTrouble;
  if (files.size() != 2 || !is_folder(files[0])) {
    return run_one(options, "diff", files.front(), [&] { return diff(settings, given); });
  }
  if (!given.html.empty()) {
    complain("--html takes two files; a page shows the differences of one pair");
    return kTrouble;
  }
  EachPair each{.subcommand = "diff",
                .json = given.json,
                .table = given.json ? nullptr : &out(),
                .rows = PairTable({"changed", "removed", "added", "moved", nullptr}),
                .work = [&](const Settings& shared, std::size_t, const std::string& old_file,
                            const std::string& new_file, PairCounts& counts) {
                  DiffTask task = given;
                  task.arguments = {old_file, new_file};
                  return diff(shared, task, &counts);
                }};
  return for_each_pair(settings, options, {files[0], files[1]}, pair_folders(files[0], files[1], options.recursive),
                       each);
}

}  // namespace trvtrout::host
