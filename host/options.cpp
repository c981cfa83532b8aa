#include "host/options.h"

#include <algorithm>
#include <map>

#include "host/exchange_options.h"
#include "host/nearest.h"
#include "host/part_reports.h"
#include "platform/files/path.h"

namespace trvtrout::host {

std::string joined(const std::vector<std::string>& names, const char* separator) {
  std::string text;
  for (const std::string& name : names) (text += text.empty() ? "" : separator) += name;
  return text;
}

namespace {

void add_code_page(CLI::App& command, Settings& settings) {
  command.add_option("--code-page", settings.code_page, "Code page of the texts in the file")
      ->type_name("NUMBER")
      ->capture_default_str();
}

void add_overwrite(CLI::App& command, Settings& settings) {
  using platform::Overwrite;
  auto* const yes = command.add_flag_callback(
      "--yes", [&settings] { settings.overwrite = Overwrite::kYes; }, "Overwrite existing files");
  command
      .add_flag_callback(
          "--no-clobber", [&settings] { settings.overwrite = Overwrite::kNever; }, "Never overwrite a file")
      ->excludes(yes);
}

void add_parts(CLI::App& command, std::vector<std::string>& parts) {
  const std::vector<std::string> names = part_names();
  command.add_option("--part", parts, "Only this part; may be given several times: " + joined(names))
      ->type_name("PART")
      ->check(
          [names](const std::string& given) {
            if (std::ranges::find(names, given) != names.end()) return std::string();
            const std::string meant = did_you_mean(given, names);
            throw UsageError("there is no part \"" + given + "\"" +
                             (meant.empty() ? "; the parts are " + joined(names) : meant));
          },
          "", std::string(kTakesOneOf) + joined(names, " "))
      ->take_all()
      ->allow_extra_args(false);
}

void add_json(CLI::App& command, bool& json, const std::string& what = "For programs") {
  command.add_flag("--json", json, what + "; docs/json.md tells the form");
}

// A variable of the shell that isn't set mustn't stand for "no file".
std::string check_path(const std::string& given) {
  if (given.empty()) return "a file name is missing";
  if (platform::has_class_path(given)) return {};
  throw UsageError(given + ": " + platform::kNoClassPath);
}

void add_file_operand(CLI::App& command, const char* name, std::string& file, const char* description) {
  command.add_option(name, file, description)->required()->type_name("")->check(check_path, "", kTakesFile);
}

CLI::Option* add_file(CLI::App& command, const char* name, std::string& file, const char* description) {
  return command.add_option(name, file, description)->type_name("FILE")->check(check_path, "", kTakesFile);
}

CLI::Option* add_folder(CLI::App& command, const char* name, std::string& folder, const char* description) {
  return command.add_option(name, folder, description)->type_name("FOLDER")->check(check_path, "", kTakesFolder);
}

CLI::Option* add_wait(CLI::App& command, Settings& settings) {
  constexpr unsigned kDay = 86400;
  return command
      .add_option("--wait", settings.wait_seconds, "Wait up to SECONDS for a workbook that another run holds")
      ->option_text("SECONDS")
      ->check(CLI::Range(0U, kDay));
}

CLI::Option* add_workbook(CLI::App& command, std::string& workbook, Settings& settings) {
  auto* const option =
      add_file(command, "--workbook", workbook,
               "Put each part into a sheet of this .xls or .xlsx file, which is created if needed; asks no questions");
  command.add_flag("--replace-sheets", settings.replace_sheets, "Exchange the sheets of earlier runs in the workbook")
      ->needs(option);
  add_wait(command, settings)->needs(option);
  return option;
}

CLI::Option* add_output_dir(CLI::App& command, std::string& folder) {
  return add_folder(command, "--output-dir", folder, "Write the reports into this folder, which must exist");
}

void add_run_options(CLI::App& command, InputOptions& inputs) {
  constexpr unsigned kMostJobs = 128;
  command.add_flag("--recursive", inputs.recursive, "Of a folder, take the folders in it, too");
  command.add_option("--jobs", inputs.jobs, "Work on N files at the same time; by default one for each core")
      ->option_text("N")
      ->check(CLI::Range(1U, kMostJobs));
}

void add_log(CLI::App& command, std::string& log) {
  add_file(command, "--log", log, "Append a line for each file to this text file: exit status, file, why");
}

// Any number of files and folders.
void add_inputs(CLI::App& command, InputOptions& inputs, const char* description) {
  command.add_option("FILE", inputs.operands, description)->type_name("")->check(check_path, "", kTakesFile);
  command
      .add_option(
          "--files-from", inputs.files_from,
          "Take the files and folders in LIST, too: one to a line, or with zero bytes between them; - for stdin")
      ->option_text("LIST")
      ->check(check_path, "", kTakesFile);
  add_run_options(command, inputs);
}

void add_salvage(CLI::App& command, bool& salvage) {
  command.add_flag("--salvage", salvage, "Of a damaged file, take all that `vtrout recover` would save");
}

}  // namespace

void add_info(CLI::App& command, Request& request) {
  InfoTask& task = request.info;
  add_inputs(command, request.inputs, "VTR files, and folders that have some");
  add_log(command, request.inputs.log);
  add_json(command, task.json);
  add_salvage(command, task.salvage);
  add_code_page(command, request.settings);
}

void add_report(CLI::App& command, Request& request) {
  ReportTask& task = request.report;
  add_inputs(command, request.inputs, "VTR files, and folders that have some");
  add_log(command, request.inputs.log);
  add_parts(command, task.parts);
  auto* const temporary =
      command.add_flag("--temporary", task.temporary, "Use the temporary name, which has no date in it");
  auto* const output_dir = add_output_dir(command, task.output_dir);
  add_salvage(command, task.salvage);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
  add_workbook(command, task.workbook, request.settings)->excludes(temporary)->excludes(output_dir);
}

void add_compare(CLI::App& command, Request& request) {
  ComparisonTask& task = request.comparison;
  add_file_operand(command, "PRIMARY", task.primary, "The VTR file that came first, or a folder of such files");
  add_file_operand(command, "SECONDARY", task.secondary, "The one that came after it; files are paired by their paths");
  add_run_options(command, request.inputs);
  add_log(command, request.inputs.log);
  add_parts(command, task.parts);
  auto* const summary = command.add_flag("--summary", task.summary, "Write no files, only print the counts");
  auto* const output_dir = add_output_dir(command, task.output_dir)->excludes(summary);
  auto* const workbook =
      add_workbook(command, task.workbook, request.settings)->excludes(summary)->excludes(output_dir);
  command
      .add_flag_callback(
          "--no-color", [&task] { task.color = false; }, "Don't colour the labels in the workbook")
      ->needs(workbook);
  add_json(command, task.json, "The counts for programs");
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_diff(CLI::App& command, Request& request) {
  DiffTask& task = request.diff;
  command
      .add_option("FILE", task.arguments, "The VTR files or folders OLD and NEW; or what git gives to such a command")
      ->required()
      ->type_name("")
      ->expected(1, 9)
      ->check(check_path, "", kTakesFile);
  add_run_options(command, request.inputs);
  add_log(command, request.inputs.log);
  add_parts(command, task.parts);
  const auto add_patterns = [&](const char* name, std::vector<std::string>& patterns, const char* description) {
    command.add_option(name, patterns, description)->option_text("GLOB")->take_all()->allow_extra_args(false);
  };
  add_patterns("--only", task.only, "Only what stands at these paths, like 'Schema/Tables/**/Name'; several times");
  add_patterns("--ignore", task.ignore, "All but what stands at these paths; several times");
  auto* const all =
      command.add_flag("--all", task.all, "Also unused slots, their numbers and spare values, one by one");
  auto* const summary = command.add_flag("--summary", task.summary, "Only the counts, by section")->excludes(all);
  auto* const html = add_file(command, "--html", task.html, "Write a page that shows the differences in a browser")
                         ->excludes(summary)
                         ->excludes(all);
  static const std::map<std::string, ColorWhen> kWhen = {
      {"auto", ColorWhen::kAuto}, {"always", ColorWhen::kAlways}, {"never", ColorWhen::kNever}};
  command.add_option("--color", task.color, "When to use colours: auto, always or never")
      ->option_text("WHEN")
      ->transform(CLI::Transformer(kWhen))
      ->check(CLI::Validator(), std::string(kTakesOneOf) + "auto always never")
      ->default_str("auto");
  add_salvage(command, task.salvage);
  add_json(command, task.json, "The differences for programs");
  command.get_option("--json")->excludes(all)->excludes(summary)->excludes(html);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_text(CLI::App& command, Request& request) {
  add_file_operand(command, "FILE", request.text.file, "A VTR file");
  add_salvage(command, request.text.salvage);
  add_code_page(command, request.settings);
}

void add_recover(CLI::App& command, Request& request) {
  RecoveryTask& task = request.recovery;
  add_inputs(command, request.inputs, "VTR files, damaged or of the old format, and folders; they're never changed");
  auto* const output = add_file(command, "--output", task.output, "The new file; by default a name beside FILE");
  add_folder(command, "--output-dir", task.output_dir, "Write the new files into this folder, which must exist")
      ->excludes(output);
  add_file(command, "--log", task.log,
           "A text file for the lists of what was read and recovered; of several files, append a line for each to it");
  command.add_flag("--first-damage", task.first_damage, "Save only what stands in front of the first damage");
  add_folder(command, "--unexplained", task.unexplained,
             "Write the bytes of which nothing can be told into this folder, each range to a file");
  add_json(command, task.json);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_statistics(CLI::App& command, Request& request) {
  StatisticsTask& task = request.statistics;
  add_file_operand(command, "WORKBOOK", task.workbook, "An .xls or .xlsx file");
  add_file_operand(command, "REPORT", task.report, "A comma-separated text whose name ends in .csv");
  command.add_option("SHEET", task.sheet_name, "Name of the new sheet")->required()->type_name("");
  add_code_page(command, request.settings);
  add_wait(command, request.settings);
}

void add_export(CLI::App& command, Request& request) {
  add_inputs(command, request.inputs, "A VTR file; for --ndjson and --sqlite several, and folders that have some");
  add_log(command, request.inputs.log);
  add_export_options(command, request.exported, check_path);
  add_salvage(command, request.exported.salvage);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_import(CLI::App& command, Request& request) {
  add_import_options(command, request.imported, check_path);
  add_overwrite(command, request.settings);
}

}  // namespace trvtrout::host
