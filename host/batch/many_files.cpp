// `vtrout info`, `report` and `recover` for any number of files: each file is one call of the subcommand.
#include "host/batch/batch.h"
#include "host/commands.h"
#include "platform/files/path.h"
#include "services/guard.h"

namespace trvtrout::host {
namespace {

// What is done for one file; `many`: whether it's one of several, and its number then.
struct EachFile {
  const char* subcommand;
  const char* remark;
  bool json = false;
  std::function<ExitStatus(const Settings& settings, const Input& file, std::size_t number)> work;
};

ExitStatus do_one(const Settings& settings, const InputOptions& options, const EachFile& each) {
  return run_one(options, each.subcommand, options.operands.front(),
                 [&] { return each.work(settings, {options.operands.front()}, 0); });
}

ExitStatus for_each_file(const Settings& settings, const InputOptions& options, InputList list, const EachFile& each) {
  if (list.files.empty()) return list.is_whole ? kFine : kTrouble;
  Batch batch{.subcommand = each.subcommand, .remark = each.remark};
  for (const Input& file : list.files) batch.files.push_back(file.path);
  batch.work = [&](const Settings& shared, std::size_t number) {
    const Input& file = list.files[number];
    const bool has_path = platform::has_class_path(file.path);
    if (!has_path) complain(file.path + ": " + platform::kNoClassPath);
    const ExitStatus status = has_path ? each.work(shared, file, number) : kTrouble;
    if (status == kTrouble && each.json) show_trouble_json(file.path);
    return status;
  };
  const BatchEnd end = run_batch(settings, options, batch);
  return std::max(finish_batch(end), list.is_whole ? kFine : kTrouble);
}

ExitStatus refuse(const char* what) {
  complain(what);
  return kTrouble;
}

}  // namespace

ExitStatus info_files(const Settings& settings, const InputOptions& options, const InfoTask& given) {
  if (!has_operands(options, "info")) return kTrouble;
  const EachFile each{.subcommand = "info",
                      .remark = "damaged",
                      .json = given.json,
                      .work = [&](const Settings& shared, const Input& file, std::size_t number) {
                        InfoTask task = given;
                        task.file = file.path;
                        task.follows_another = number > 0;
                        return info(shared, task);
                      }};
  if (is_one_file(options)) return do_one(settings, options, each);
  return for_each_file(settings, options, list_inputs(options), each);
}

ExitStatus report_files(const Settings& settings, const InputOptions& options, const ReportTask& given) {
  if (!has_operands(options, "report")) return kTrouble;
  InputList list;
  std::vector<std::size_t> owners = {0};
  const EachFile each{.subcommand = "report",
                      .remark = "damaged",
                      .work = [&](const Settings& shared, const Input& file, std::size_t number) {
                        if (!has_own_names(list.files, owners, number)) return kTrouble;
                        ReportTask task = given;
                        task.file = file.path;
                        task.output_dir = folder_for(given.output_dir, file);
                        return report(shared, task);
                      }};
  if (is_one_file(options)) return do_one(settings, options, each);
  if (!given.workbook.empty())
    return refuse("--workbook takes the reports on one file; the sheets of several would have the same names");
  list = list_inputs(options);
  owners = owners_of_names(list.files, given.output_dir);
  return for_each_file(settings, options, list, each);
}

ExitStatus recover_files(const Settings& settings, const InputOptions& given_options, const RecoveryTask& given) {
  if (!has_operands(given_options, "recover")) return kTrouble;
  InputOptions options = given_options;
  const bool is_one = is_one_file(options);
  InputList list;
  std::vector<std::size_t> owners = {0};
  const EachFile each{.subcommand = "recover",
                      .remark = "with losses",
                      .json = given.json,
                      .work = [&](const Settings& shared, const Input& file, std::size_t number) {
                        if (!has_own_names(list.files, owners, number)) return kTrouble;
                        RecoveryTask task = given;
                        task.file = file.path;
                        task.output_dir = folder_for(given.output_dir, file);
                        task.unexplained = folder_for(given.unexplained, file);
                        if (!is_one) {
                          task.log.clear();
                          task.inputs = &list.files;
                        }
                        return recover(shared, task);
                      }};
  // Of one file the log has the lists of what was read and recovered.
  if (is_one) return do_one(settings, options, each);
  options.log = given.log;
  if (!given.output.empty())
    return refuse("--output names the new file of one file; --output-dir takes those of several");
  list = list_inputs(options);
  owners = owners_of_names(list.files, given.output_dir);
  return for_each_file(settings, options, list, each);
}

}  // namespace trvtrout::host
