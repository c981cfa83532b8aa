#include <CLI/CLI.hpp>
#include <csignal>

#include "host/commands.h"
#include "host/part_reports.h"
#include "platform/files/unfinished.h"

namespace {

using namespace trvtrout::host;
using trvtrout::platform::Overwrite;

constexpr const char* kDescription =
    "Examples:\n"
    "  vtrout report plant.vtr          write the eight detail reports beside the file\n"
    "  vtrout compare old.vtr new.vtr   tell, part by part, what changed between two files\n"
    "  vtrout recover damaged.vtr       write what can be saved of a file to a new one\n"
    "\n"
    "Reads binary VTR files, reports on them and compares them as comma-separated text, and rewrites damaged ones.\n"
    "Exit status: 0 fine; 1 the files differ, or the file is damaged and what could be read was used; 2 trouble, told\n"
    "on stderr.";

void add_code_page(CLI::App& command, Settings& settings) {
  command.add_option("--code-page", settings.code_page, "Code page of the texts in the file")->capture_default_str();
}

void add_overwrite(CLI::App& command, Settings& settings) {
  auto* const yes = command.add_flag_callback(
      "--yes", [&settings] { settings.overwrite = Overwrite::kYes; }, "Overwrite files that exist");
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

// A variable of the shell that isn't set mustn't stand for "no file".
std::string require_name(const std::string& name) { return name.empty() ? "the name of a file is missing" : ""; }

CLI::Option* add_workbook(CLI::App& command, std::string& workbook) {
  return command
      .add_option("--workbook", workbook,
                  "Move each part into a sheet of this .xls or .xlsx file, which is made if missing; asks no questions")
      ->check(require_name);
}

int run(int argc, char** argv) {
  CLI::App app(kDescription, "vtrout");
  app.set_version_flag("--version", "vtrout " VTROUT_VERSION);
  app.require_subcommand(1);
  Settings settings;
  std::string file;
  ExitStatus status = kFine;

  bool json = false;
  auto* const info_command = app.add_subcommand("info", "Tell what a file holds, and whether its lists hold together");
  info_command->add_option("FILE", file, "A VTR file")->required();
  info_command->add_flag("--json", json, "For programs; docs/json.md tells the form");
  add_code_page(*info_command, settings);
  info_command->callback([&] { status = info(settings, file, json); });

  ReportTask reports;
  auto* const report_command = app.add_subcommand("report", "Write detail reports beside a file; prints their paths");
  report_command->add_option("FILE", reports.file, "A VTR file")->required();
  add_parts(*report_command, reports.parts);
  auto* const temporary =
      report_command->add_flag("--temporary", reports.temporary, "Ask for the temporary name, which has no date in it");
  add_overwrite(*report_command, settings);
  add_code_page(*report_command, settings);
  add_workbook(*report_command, reports.workbook)->excludes(temporary);
  report_command->callback([&] { status = report(settings, reports); });

  ComparisonTask task;
  auto* const compare_command =
      app.add_subcommand("compare", "Compare two files part by part; prints the reports' paths, counts the rows");
  compare_command->add_option("PRIMARY", task.primary, "The VTR file that came first")->required();
  compare_command->add_option("SECONDARY", task.secondary, "The VTR file that came after it")->required();
  add_parts(*compare_command, task.parts);
  auto* const summary = compare_command->add_flag("--summary", task.summary, "Write no files, print the counts alone");
  auto* const compared_workbook = add_workbook(*compare_command, task.workbook)->excludes(summary);
  compare_command->add_flag("!--no-color", task.color, "Leave the labels in the workbook without colours")
      ->needs(compared_workbook);
  compare_command->add_flag("--json", task.json, "The counts for programs; docs/json.md tells the form");
  add_overwrite(*compare_command, settings);
  add_code_page(*compare_command, settings);
  compare_command->callback([&] { status = compare(settings, task); });

  RecoveryTask recovery;
  auto* const recover_command = app.add_subcommand(
      "recover", "Write what can be read of a file to a new one; prints its path, tells what became of each section");
  recover_command->add_option("FILE", recovery.file, "A VTR file, damaged or of the old format; it's never changed")
      ->required();
  recover_command->add_option("--output", recovery.output, "The new file; a name beside FILE unless said otherwise")
      ->check(require_name);
  recover_command->add_option("--log", recovery.log, "A text file for the lists of what was read and recovered")
      ->check(require_name);
  recover_command->add_flag("--json", recovery.json, "For programs; docs/json.md tells the form");
  add_overwrite(*recover_command, settings);
  add_code_page(*recover_command, settings);
  recover_command->callback([&] { status = recover(settings, recovery); });

  std::string workbook, sheet;
  auto* const statistics_command =
      app.add_subcommand("statistics", "Move a detail report that exists into a sheet of a workbook that exists");
  statistics_command->add_option("WORKBOOK", workbook, "An .xls or .xlsx file")->required();
  statistics_command->add_option("REPORT", file, "A comma-separated text, named .csv")->required();
  statistics_command->add_option("SHEET", sheet, "Name of the new sheet")->required();
  add_code_page(*statistics_command, settings);
  statistics_command->callback([&] { status = statistics(settings, workbook, file, sheet); });

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help, --version
    complain(std::string(error.what()) + "; see vtrout --help");
    return kTrouble;
  }
  std::cout.flush();
  if (!std::cout) {
    complain("the output can't be written; check what stdout is connected to");
    return kTrouble;
  }
  return status;
}

// A person who stops the command finds nothing half done beside the files.
void stop(int signal) {
  trvtrout::platform::remove_unfinished();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

int main(int argc, char** argv) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    // What whoever started the command has it ignore (nohup) stays ignored.
    if (std::signal(signal, stop) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
  // A limit on the size of files and a reader that went away come back as errors, which are told.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    complain(error.what());
    return kTrouble;
  }
}
