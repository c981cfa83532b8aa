#include "host/command_line.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <poll.h>
#include <unistd.h>

#include "host/commands.h"
#include "host/exchange_options.h"
#include "host/nearest.h"
#include "host/part_reports.h"
#include "platform/files/path.h"

// The one place that knows the subcommands and their options.
namespace trvtrout::host {
namespace {

constexpr const char* kDescription =
    "Examples:\n"
    "  vtrout report plant.vtr          write the eight detail reports beside the file\n"
    "  vtrout compare old.vtr new.vtr   show, part by part, what changed between two files\n"
    "  vtrout recover damaged.vtr       write what can be saved of a file to a new one\n"
    "  vtrout help compare              tell all about one of the subcommands\n"
    "\n"
    "Reads binary VTR files, reports on them and compares them as comma-separated text, and rewrites damaged ones. It\n"
    "never writes to a file that it reads, and runs on Linux.\n"
    "Exit status: 0 fine; 1 the files differ, or the file is damaged and what could be read was used; 2 trouble,\n"
    "explained on stderr.";

// Arguments that can't be understood, in words for people.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the arguments ask for.
struct Request {
  Settings settings;
  InfoTask info;
  ReportTask report;
  ComparisonTask comparison;
  RecoveryTask recovery;
  StatisticsTask statistics;
  DiffTask diff;
  TextTask text;
  ExportTask exported;
  ImportTask imported;
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

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) (text += text.empty() ? "" : ", ") += name;
  return text;
}

void add_parts(CLI::App& command, std::vector<std::string>& parts) {
  const std::vector<std::string> names = part_names();
  command.add_option("--part", parts, "Only this part; may be given several times: " + joined(names))
      ->check([names](const std::string& given) {
        if (std::ranges::find(names, given) != names.end()) return std::string();
        const std::string meant = did_you_mean(given, names);
        throw UsageError("there is no part \"" + given + "\"" +
                         (meant.empty() ? "; the parts are " + joined(names) : meant));
      })
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
  command.add_option(name, file, description)->required()->check(check_path);
}

CLI::Option* add_file(CLI::App& command, const char* name, std::string& file, const char* description) {
  return command.add_option(name, file, description)->check(check_path);
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
  return add_file(command, "--output-dir", folder, "Write the reports into this folder, which must exist");
}

void add_salvage(CLI::App& command, bool& salvage) {
  command.add_flag("--salvage", salvage, "Of a damaged file, take all that `vtrout recover` would save");
}

void add_info(CLI::App& command, Request& request) {
  InfoTask& task = request.info;
  add_file_operand(command, "FILE", task.file, "A VTR file");
  add_json(command, task.json);
  add_salvage(command, task.salvage);
  add_code_page(command, request.settings);
}

void add_report(CLI::App& command, Request& request) {
  ReportTask& task = request.report;
  add_file_operand(command, "FILE", task.file, "A VTR file");
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
  add_file_operand(command, "PRIMARY", task.primary, "The VTR file that came first");
  add_file_operand(command, "SECONDARY", task.secondary, "The VTR file that came after it");
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
  command.add_option("FILE", task.arguments, "The VTR files OLD and NEW; or what git gives to such a command")
      ->required()
      ->expected(2, 9)
      ->check(check_path);
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
      ->default_str("auto");
  add_json(command, task.json, "The differences for programs");
  command.get_option("--json")->excludes(all)->excludes(summary)->excludes(html);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_text(CLI::App& command, Request& request) {
  add_file_operand(command, "FILE", request.text.file, "A VTR file");
  add_code_page(command, request.settings);
}

void add_recover(CLI::App& command, Request& request) {
  RecoveryTask& task = request.recovery;
  add_file_operand(command, "FILE", task.file, "A VTR file, damaged or of the old format; it's never changed");
  add_file(command, "--output", task.output, "The new file; by default a name beside FILE");
  add_file(command, "--log", task.log, "A text file for the lists of what was read and recovered");
  command.add_flag("--first-damage", task.first_damage, "Save only what stands in front of the first damage");
  add_file(command, "--unexplained", task.unexplained,
           "Write the bytes of which nothing can be told into this folder, each range to a file");
  add_json(command, task.json);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_statistics(CLI::App& command, Request& request) {
  StatisticsTask& task = request.statistics;
  add_file_operand(command, "WORKBOOK", task.workbook, "An .xls or .xlsx file");
  add_file_operand(command, "REPORT", task.report, "A comma-separated text whose name ends in .csv");
  command.add_option("SHEET", task.sheet_name, "Name of the new sheet")->required();
  add_code_page(command, request.settings);
  add_wait(command, request.settings);
}

void add_export(CLI::App& command, Request& request) {
  add_export_options(command, request.exported, check_path);
  add_overwrite(command, request.settings);
  add_code_page(command, request.settings);
}

void add_import(CLI::App& command, Request& request) {
  add_import_options(command, request.imported, check_path);
  add_overwrite(command, request.settings);
}

struct Subcommand {
  const char* name;
  const char* description;
  void (*add_options)(CLI::App& command, Request& request);
  ExitStatus (*run)(const Request& request);
  const char* notes[2];
  const char* examples[2];
  const char* statuses[3];  // null for one that it doesn't end with
};

constexpr const char* kTroubleStatus = "trouble: a line on stderr says what, where and what to do";

constexpr const char* kCutCells =
    "Some texts lose their commas and line ends in a report; docs/reports.md says which.\n";

constexpr const char* kCompared =
    "Compared are the records of the eight parts, paired by their keys. Nothing is said of the product's own values\n"
    "(shown side by side), relations, hidden tables and lookups, field matches, extended storage, the DSN list,\n"
    "import files, residual tables and spare slots; docs/reports.md lists every column. Of a file in the old format,\n"
    "01.00.00, only table, field and lookup can be compared. In a workbook the labels of the last rows can stay\n"
    "plain; docs/workbooks.md says when.\n";

constexpr const char* kDiffered =
    "Compared are all values of all fourteen sections; vtrout compare looks at the columns of its reports alone.\n"
    "Paths are those of --json: Schema/Tables/Items[3]/Name. In a GLOB \"*\" stands for any characters of a step,\n"
    "\"**\" for any steps, and a list's name for all of its items. docs/git.md tells how git can call it.\n";

constexpr Subcommand kSubcommands[] = {
    {"info",
     "Show what a file holds, and whether its lists hold together",
     add_info,
     [](const Request& request) { return info(request.settings, request.info); },
     {},
     {"vtrout info plant.vtr", "vtrout info --json plant.vtr"},
     {"the whole file was read, and its lists hold together",
      "the file is damaged, and what could be read is shown; or a list doesn't hold together", kTroubleStatus}},
    {"report",
     "Write detail reports beside a file, and print their paths",
     add_report,
     [](const Request& request) { return report(request.settings, request.report); },
     {kCutCells},
     {"vtrout report plant.vtr --part table --part field", "vtrout report plant.vtr --workbook plant.xlsx"},
     {"fine", "the file is damaged; the reports hold what could be read", kTroubleStatus}},
    {"compare",
     "Compare two files part by part; print the reports' paths, and count the rows",
     add_compare,
     [](const Request& request) { return compare(request.settings, request.comparison); },
     {kCompared, kCutCells},
     {"vtrout compare old.vtr new.vtr --summary", "vtrout compare old.vtr new.vtr --workbook changes.xlsx"},
     {"no row differs", "a row changed, was deleted or was added",
      "trouble, explained on stderr; also when a part that was asked for\n     couldn't be compared to its end"}},
    {"diff",
     "Show every difference between two files, item by item",
     add_diff,
     [](const Request& request) { return diff(request.settings, request.diff); },
     {kDiffered},
     {"vtrout diff old.vtr new.vtr", "vtrout diff old.vtr new.vtr --html changes.html"},
     {"nothing differs outside the header", "something differs", kTroubleStatus}},
    {"text",
     "Print all that a file holds as lines, to be compared line by line",
     add_text,
     [](const Request& request) { return text(request.settings, request.text); },
     {},
     {"vtrout text plant.vtr", "git config diff.vtr.textconv 'vtrout text'"},
     {"the whole file was read", "the file is damaged; the lines are what could be read", kTroubleStatus}},
    {"recover",
     "Write what can be saved of a file to a new one; print its path, and what became of each section",
     add_recover,
     [](const Request& request) { return recover(request.settings, request.recovery); },
     {},
     {"vtrout recover damaged.vtr", "vtrout recover old.vtr --output new.vtr --log lost.txt"},
     {"nothing was lost", "something was lost, or may have been",
      "nothing was written; a line on stderr says why and what to do"}},
    {"export",
     "Write the content of files for other programs: as JSON, or in a database",
     add_export,
     [](const Request& request) { return export_documents(request.settings, request.exported); },
     {"docs/json.md tells the forms of JSON, docs/queries.md what can be asked of a database.\n"},
     {"vtrout export plant.vtr --json plant.json", "vtrout export plant.vtr plant-next.vtr --sqlite plants.db"},
     {"fine", "something of a file in the old format has no place in the current one",
      "nothing was exported; a line on stderr says why and what to do"}},
    {"import",
     "Write the VTR file that a document's JSON describes",
     add_import,
     [](const Request& request) { return import_document(request.settings, request.imported); },
     {"The file is read back and compared before it takes its place.\n"},
     {"vtrout import plant.json plant.vtr"},
     {"the file was written", nullptr, "nothing was written; a line on stderr says why and what to do"}},
    {"statistics",
     "Add an existing detail report to an existing workbook, as a sheet",
     add_statistics,
     [](const Request& request) { return statistics(request.settings, request.statistics); },
     {},
     {"vtrout statistics plant.xlsx plant_Table.CSV Tables", "vtrout statistics plant.xls '~tmpplant_Tree.CSV' Tree"},
     {"the sheet was added", nullptr, kTroubleStatus}},
};

std::vector<std::string> subcommand_names() {
  std::vector<std::string> names;
  std::ranges::transform(kSubcommands, std::back_inserter(names), &Subcommand::name);
  names.emplace_back("help");
  return names;
}

std::string footer_of(const Subcommand& subcommand) {
  std::string text;
  for (const char* const note : subcommand.notes) text += note == nullptr ? "" : note;
  text += text.empty() ? "Examples:\n" : "\nExamples:\n";
  for (const char* const example : subcommand.examples) {
    if (example != nullptr) text += std::string("  ") + example + '\n';
  }
  text += "\nExit status:\n";
  for (std::size_t status = 0; status < std::size(subcommand.statuses); ++status) {
    const char* const meaning = subcommand.statuses[status];
    if (meaning != nullptr) text += "  " + std::to_string(status) + "  " + meaning + '\n';
  }
  text.pop_back();
  return text;
}

void add(CLI::App& app, const Subcommand& subcommand, Request& request) {
  CLI::App& command = *app.add_subcommand(subcommand.name, subcommand.description);
  subcommand.add_options(command, request);
  command.add_flag("-q,--quiet", request.settings.quiet, "Only errors on stderr: no progress, no tables, no counts");
  command.footer(footer_of(subcommand));
}

void print_short_help() {
  std::cerr << "Usage: vtrout SUBCOMMAND ARGUMENTS...\n\n";
  for (const Subcommand& subcommand : kSubcommands) {
    std::cerr << "  " << std::left << std::setw(12) << subcommand.name << subcommand.description << '\n';
  }
  std::cerr << "\nvtrout help tells more, vtrout help SUBCOMMAND all about one of them.\n";
}

std::vector<std::string> option_names(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

// Of arguments that nothing takes. `command`: the subcommand, or the whole when none is named.
[[noreturn]] void refuse_extra(const CLI::App& command, const std::string& given) {
  if (!given.starts_with('-')) throw UsageError('"' + given + "\" is one argument too many");
  const std::string name = given.substr(0, given.find('='));
  throw UsageError("there is no option \"" + name + '"' +
                   (name.size() > 2 ? did_you_mean(name, option_names(command)) : ""));
}

// The arguments, with `help` and `help SUBCOMMAND` as the options that they stand for.
std::vector<std::string> arguments_of(int argc, const char* const* argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.front() == "help") {
    arguments.erase(arguments.begin());
    arguments.resize(std::min<std::size_t>(arguments.size(), 1));
    if (!arguments.empty() && arguments.front() == "help") arguments.clear();
    arguments.emplace_back("--help");
  }
  return arguments;
}

// Raises CLI::ParseError and UsageError.
const Subcommand& parse(CLI::App& app, std::vector<std::string> arguments) {
  const std::string first = arguments.front();
  const auto named = std::ranges::find(kSubcommands, first, &Subcommand::name);
  if (named == std::end(kSubcommands) && !first.starts_with('-')) {
    throw UsageError("there is no subcommand \"" + first + '"' + did_you_mean(first, subcommand_names()));
  }
  // In front of the subcommand there is nothing but help and the version, which end the parsing.
  if (named == std::end(kSubcommands) && app.get_option_no_throw(first) == nullptr) refuse_extra(app, first);
  std::ranges::reverse(arguments);  // as the library takes them
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::ExtrasError&) {
    std::vector<std::string> extra = app.remaining(true);
    std::erase(extra, "--");
    refuse_extra(*app.get_subcommands().front(), extra.empty() ? "--" : extra.front());
  }
  return *named;
}

// Whoever read the output has seen enough; that's no trouble.
bool reader_went_away() {
  pollfd output{STDOUT_FILENO, POLLOUT, 0};
  return poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

// The exit status once all output has gone out.
ExitStatus finish(ExitStatus status) {
  std::cout.flush();
  if (std::cout) return status;
  if (!reader_went_away()) {
    complain("the output can't be written; check what stdout is connected to");
  } else if (status != kTrouble) {
    std::signal(SIGPIPE, SIG_DFL);  // as those end whom it stopped at once; here the work is done
    std::raise(SIGPIPE);
  }
  return kTrouble;
}

}  // namespace

ExitStatus run_command_line(int argc, const char* const* argv) {
  if (argc < 2) {
    print_short_help();
    return kTrouble;
  }
  CLI::App app(kDescription, "vtrout");
  app.set_version_flag("--version", "vtrout " VTROUT_VERSION);
  app.require_subcommand(1);
  Request request;
  for (const Subcommand& subcommand : kSubcommands) add(app, subcommand, request);
  std::string help = "vtrout help";
  try {
    const std::vector<std::string> arguments = arguments_of(argc, argv);
    const Subcommand& subcommand = parse(app, arguments);
    if (request.settings.quiet) Progress::turn_off();
    return finish(subcommand.run(request));
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      app.exit(error);
      return finish(kFine);
    }
    for (const CLI::App* const command : app.get_subcommands()) help += ' ' + command->get_name();
    complain(std::string(error.what()) + "; see " + help);
  } catch (const UsageError& error) {
    complain(error.what());
  }
  return kTrouble;
}

}  // namespace trvtrout::host
