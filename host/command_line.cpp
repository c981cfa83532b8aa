#include "host/command_line.h"

#include <csignal>
#include <poll.h>
#include <unistd.h>

#include "host/nearest.h"
#include "host/subcommands.h"

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

std::vector<std::string> subcommand_names() {
  std::vector<std::string> names;
  std::ranges::transform(subcommands(), std::back_inserter(names), &Subcommand::name);
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
  for (const Subcommand& subcommand : subcommands()) {
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
  const auto named = std::ranges::find(subcommands(), first, &Subcommand::name);
  if (named == subcommands().end() && !first.starts_with('-')) {
    throw UsageError("there is no subcommand \"" + first + '"' + did_you_mean(first, subcommand_names()));
  }
  // In front of the subcommand there is nothing but help and the version, which end the parsing.
  if (named == subcommands().end() && app.get_option_no_throw(first) == nullptr) refuse_extra(app, first);
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

std::unique_ptr<CLI::App> make_app(Request& request) {
  auto app = std::make_unique<CLI::App>(kDescription, "vtrout");
  app->set_version_flag("--version", "vtrout " VTROUT_VERSION);
  app->require_subcommand(1);
  for (const Subcommand& subcommand : subcommands()) add(*app, subcommand, request);
  return app;
}

ExitStatus run_command_line(int argc, const char* const* argv) {
  if (argc < 2) {
    print_short_help();
    return kTrouble;
  }
  Request request;
  const std::unique_ptr<CLI::App> made = make_app(request);
  CLI::App& app = *made;
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
