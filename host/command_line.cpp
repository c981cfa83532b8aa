#include "host/command_line.h"

#include <CLI/CLI.hpp>

#include "host/commands.h"
#include "host/part_reports.h"

// The one place that knows the subcommands and their options.
namespace trvtrout::host {
namespace {

constexpr const char* kDescription =
    "Examples:\n"
    "  vtrout report plant.vtr          write the eight detail reports beside the file\n"
    "  vtrout compare old.vtr new.vtr   show, part by part, what changed between two files\n"
    "  vtrout recover damaged.vtr       write what can be saved of a file to a new one\n"
    "\n"
    "Reads binary VTR files, reports on them and compares them as comma-separated text, and rewrites damaged ones.\n"
    "Exit status: 0 fine; 1 the files differ, or the file is damaged and what could be read was used; 2 trouble,\n"
    "explained on stderr.";

// What the arguments ask for, and what came of the subcommand that they name.
struct Request {
  Settings settings;
  InfoTask info;
  ReportTask report;
  ComparisonTask comparison;
  RecoveryTask recovery;
  StatisticsTask statistics;
  ExitStatus status = kFine;
};

void add_code_page(CLI::App& command, Settings& settings) {
  command.add_option("--code-page", settings.code_page, "Code page of the texts in the file")->capture_default_str();
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
  command.add_option("--part", parts, "Only this part; may be given several times")
      ->check(CLI::IsMember(part_names()))
      ->take_all()
      ->allow_extra_args(false);
}

void add_json(CLI::App& command, bool& json, const std::string& what = "For programs") {
  command.add_flag("--json", json, what + "; docs/json.md tells the form");
}

void add_operand(CLI::App& command, const char* name, std::string& value, const char* description) {
  command.add_option(name, value, description)->required();
}

// An option that names a file. A variable of the shell that isn't set mustn't stand for "no file".
CLI::Option* add_file(CLI::App& command, const char* name, std::string& file, const char* description) {
  return command.add_option(name, file, description)->check([](const std::string& given) {
    return std::string(given.empty() ? "a file name is missing" : "");
  });
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

void add_info(CLI::App& app, Request& request) {
  InfoTask& task = request.info;
  auto& command = *app.add_subcommand("info", "Show what a file holds, and whether its lists hold together");
  add_operand(command, "FILE", task.file, "A VTR file");
  add_json(command, task.json);
  add_code_page(command, request.settings);
  command.callback([&request] { request.status = info(request.settings, request.info); });
}

void add_report(CLI::App& app, Request& request) {
  ReportTask& task = request.report;
  auto& command = *app.add_subcommand("report", "Write detail reports beside a file, and print their paths");
  add_operand(command, "FILE", task.file, "A VTR file");
  add_parts(command, task.parts);
  auto* const temporary =
      command.add_flag("--temporary", task.temporary, "Use the temporary name, which has no date in it");
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
  add_workbook(command, task.workbook, request.settings)->excludes(temporary);
  command.callback([&request] { request.status = report(request.settings, request.report); });
}

void add_compare(CLI::App& app, Request& request) {
  ComparisonTask& task = request.comparison;
  auto& command =
      *app.add_subcommand("compare", "Compare two files part by part; print the reports' paths, and count the rows");
  add_operand(command, "PRIMARY", task.primary, "The VTR file that came first");
  add_operand(command, "SECONDARY", task.secondary, "The VTR file that came after it");
  add_parts(command, task.parts);
  auto* const summary = command.add_flag("--summary", task.summary, "Write no files, only print the counts");
  auto* const workbook = add_workbook(command, task.workbook, request.settings)->excludes(summary);
  command.add_flag("!--no-color", task.color, "Don't colour the labels in the workbook")->needs(workbook);
  add_json(command, task.json, "The counts for programs");
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
  command.callback([&request] { request.status = compare(request.settings, request.comparison); });
}

void add_recover(CLI::App& app, Request& request) {
  RecoveryTask& task = request.recovery;
  auto& command = *app.add_subcommand(
      "recover", "Write what can be read of a file to a new one; print its path, and what became of each section");
  add_operand(command, "FILE", task.file, "A VTR file, damaged or of the old format; it's never changed");
  add_file(command, "--output", task.output, "The new file; by default a name beside FILE");
  add_file(command, "--log", task.log, "A text file for the lists of what was read and recovered");
  add_json(command, task.json);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
  command.callback([&request] { request.status = recover(request.settings, request.recovery); });
}

void add_statistics(CLI::App& app, Request& request) {
  StatisticsTask& task = request.statistics;
  auto& command =
      *app.add_subcommand("statistics", "Add an existing detail report to an existing workbook, as a sheet");
  add_operand(command, "WORKBOOK", task.workbook, "An .xls or .xlsx file");
  add_operand(command, "REPORT", task.report, "A comma-separated text whose name ends in .csv");
  add_operand(command, "SHEET", task.sheet_name, "Name of the new sheet");
  add_code_page(command, request.settings);
  add_wait(command, request.settings);
  command.callback([&request] { request.status = statistics(request.settings, request.statistics); });
}

}  // namespace

ExitStatus run_command_line(int argc, const char* const* argv) {
  CLI::App app(kDescription, "vtrout");
  app.set_version_flag("--version", "vtrout " VTROUT_VERSION);
  app.require_subcommand(1);
  Request request;
  for (const auto add : {add_info, add_report, add_compare, add_recover, add_statistics}) add(app, request);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return ExitStatus(app.exit(error));  // --help, --version
    complain(std::string(error.what()) + "; see vtrout --help");
    return kTrouble;
  }
  std::cout.flush();
  if (!std::cout) {
    complain("the output can't be written; check what stdout is connected to");
    return kTrouble;
  }
  return request.status;
}

}  // namespace trvtrout::host
