#include "host/manual/described.h"

#include <sstream>

#include "host/command_line.h"

namespace trvtrout::host::manual {
namespace {

// The names of an option's checks.
std::vector<std::string> checks_of(CLI::Option& option) {
  std::vector<std::string> names;
  try {
    for (int at = 0;; ++at) names.push_back(option.get_validator(at)->get_name());
  } catch (const CLI::OptionNotFound&) {
    return names;  // the library tells their number in no other way
  }
}

void describe_value(CLI::Option& option, Argument& argument) {
  argument.takes = Takes::kText;
  for (const std::string& check : checks_of(option)) {
    if (check == kTakesFile) argument.takes = Takes::kFile;
    if (check == kTakesFolder) argument.takes = Takes::kFolder;
    if (!check.starts_with(kTakesOneOf)) continue;
    argument.takes = Takes::kOneOf;
    std::istringstream choices(check.substr(std::string_view(kTakesOneOf).size()));
    for (std::string choice; choices >> choice;) argument.choices.push_back(choice);
  }
  const std::string type = option.get_type_name();
  argument.value = option.get_option_text().empty() ? type.substr(0, type.find(':')) : option.get_option_text();
  argument.standard = option.get_default_str();
}

Argument describe(CLI::Option& option) {
  Argument argument;
  for (const std::string& name : option.get_snames()) argument.names.push_back('-' + name);
  for (const std::string& name : option.get_lnames()) argument.names.push_back("--" + name);
  const bool is_operand = option.get_positional();
  if (is_operand) argument.names = {option.get_name(true)};
  if (option.get_items_expected_max() > 0) describe_value(option, argument);
  argument.description = option.get_description();
  argument.required = option.get_required();
  argument.repeated = is_operand ? option.get_items_expected_max() > 1
                                 : option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  return argument;
}

// Of a command, the groups that are within it included.
void describe_options(CLI::App& app, std::vector<Argument>& options, std::vector<Argument>& operands) {
  for (CLI::Option* const option : app.get_options()) {
    if (app.get_name().empty() && option == app.get_help_ptr()) continue;  // a group's own
    (option->get_positional() ? operands : options).push_back(describe(*option));
  }
  for (CLI::App* const group : app.get_subcommands([](CLI::App* part) { return part->get_name().empty(); })) {
    describe_options(*group, options, operands);
  }
}

}  // namespace

DescribedProgram described_program() {
  Request request;
  const std::unique_ptr<CLI::App> app = make_app(request);
  DescribedProgram program;
  program.description = app->get_description();
  std::vector<Argument> none;
  describe_options(*app, program.options, none);
  for (const Subcommand& subcommand : subcommands()) {
    DescribedCommand command{&subcommand, {}, {}};
    CLI::App& of_command = *app->get_subcommand(subcommand.name);
    describe_options(of_command, command.options, command.operands);
    program.commands.push_back(std::move(command));
  }
  return program;
}

}  // namespace trvtrout::host::manual
