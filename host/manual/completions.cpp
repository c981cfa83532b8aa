#include <algorithm>
#include <map>

#include "host/manual/described.h"

namespace trvtrout::host::manual {
namespace {

std::string names_of(const std::vector<Argument>& options) {
  std::vector<std::string> names;
  for (const Argument& option : options) names.insert(names.end(), option.names.begin(), option.names.end());
  return joined(names, " ");
}

std::string command_names(const DescribedProgram& program) {
  std::string names;
  for (const DescribedCommand& command : program.commands) names += std::string(command.subcommand->name) + ' ';
  return names + "help";
}

bool takes_files(const DescribedCommand& command) {
  return std::ranges::any_of(command.operands, [](const Argument& operand) { return operand.takes == Takes::kFile; });
}

// With a backslash before each of these signs.
std::string escaped(const std::string& text, std::string_view special) {
  std::string result;
  for (const char sign : text) {
    if (special.find(sign) != std::string_view::npos) result += '\\';
    result += sign;
  }
  return result;
}

// As one word of a shell.
std::string shell_word(const std::string& text) {
  std::string result = "'";
  for (const char sign : text) result += sign == '\'' ? "'\\''" : std::string(1, sign);
  return result + '\'';
}

constexpr const char* kBashStart = R"(# Completion of vtrout in bash.
_vtrout() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} words=
  # "--option=value" comes as three words.
  if [ "$current" = = ]; then
    current=
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    command= previous=
  fi
  case $command:$previous in
)";

constexpr const char* kBashEnd = R"(  esac
  case $current in
    -*) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current") ;;
    *) _vtrout_paths -f "$current" ;;
  esac
}

_vtrout_paths() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

complete -F _vtrout vtrout
)";

std::string bash_values(const Argument& option) {
  switch (option.takes) {
    case Takes::kFile:
      return R"(_vtrout_paths -f "$current")";
    case Takes::kFolder:
      return R"(_vtrout_paths -d "$current")";
    case Takes::kOneOf:
      return "mapfile -t COMPREPLY < <(compgen -W " + shell_word(joined(option.choices, " ")) + R"( -- "$current"))";
    default:
      return ":";
  }
}

std::string zsh_values(const Argument& argument) {
  switch (argument.takes) {
    case Takes::kFile:
      return "_files";
    case Takes::kFolder:
      return "_files -/";
    case Takes::kOneOf:
      return '(' + joined(argument.choices, " ") + ')';
    default:
      return " ";
  }
}

// What _arguments is told of one option.
std::string zsh_argument(const Argument& option, const std::string& name) {
  constexpr std::string_view kSpecial = "[]:\\";
  std::string text = option.repeated ? "*" + name : name;
  // A value that may be left out has two colons.
  const bool may_lack_value = option.value.starts_with('[');
  if (option.takes != Takes::kNothing && !may_lack_value) text += '=';
  text += '[' + escaped(option.description, kSpecial) + ']';
  if (option.takes != Takes::kNothing) {
    text += (may_lack_value ? "::" : ":") + escaped(option.value, kSpecial) + ':' + zsh_values(option);
  }
  return shell_word(text);
}

constexpr const char* kZshStart = R"(#compdef vtrout
_vtrout() {
  local curcontext=$curcontext state line
  local -a commands
)";

}  // namespace

std::string bash_completion(const DescribedProgram& program) {
  std::string text = kBashStart;
  for (const DescribedCommand& command : program.commands) {
    for (const Argument& option : command.options) {
      if (option.takes == Takes::kNothing || option.value.starts_with('[')) continue;
      for (const std::string& name : option.names) {
        text +=
            "    " + std::string(command.subcommand->name) + ':' + name + ") " + bash_values(option) + "; return ;;\n";
      }
    }
  }
  text += "  esac\n  case $command in\n    \"\") words=" +
          shell_word(command_names(program) + ' ' + names_of(program.options)) +
          "; mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\"); return ;;\n" +
          "    help) mapfile -t COMPREPLY < <(compgen -W " + shell_word(command_names(program)) +
          " -- \"$current\"); return ;;\n";
  for (const DescribedCommand& command : program.commands) {
    text +=
        "    " + std::string(command.subcommand->name) + ") words=" + shell_word(names_of(command.options)) + " ;;\n";
  }
  return text + kBashEnd;
}

std::string zsh_completion(const DescribedProgram& program) {
  std::string text = kZshStart;
  text += "  commands=(\n";
  for (const DescribedCommand& command : program.commands) {
    text += "    " + shell_word(std::string(command.subcommand->name) + ':' + command.subcommand->description) + '\n';
  }
  text += "    'help:Tell all about a subcommand'\n  )\n  _arguments -C";
  for (const Argument& option : program.options) {
    for (const std::string& name : option.names) text += " \\\n    " + zsh_argument(option, name);
  }
  text +=
      " \\\n    '1:command:->command' '*::argument:->argument' && return\n"
      "  case $state in\n    command) _describe -t commands command commands ;;\n"
      "    argument)\n      case $words[1] in\n        help) _describe -t commands command commands ;;\n";
  for (const DescribedCommand& command : program.commands) {
    text += "        " + std::string(command.subcommand->name) + ") _arguments -s";
    for (const Argument& option : command.options) {
      for (const std::string& name : option.names) text += " \\\n          " + zsh_argument(option, name);
    }
    text += std::string(" \\\n          ") + (takes_files(command) ? "'*:file:_files'" : "'*: : '") + " ;;\n";
  }
  return text + "      esac ;;\n  esac\n}\n\n_vtrout \"$@\"\n";
}

std::string fish_completion(const DescribedProgram& program) {
  const std::string start = "complete -c vtrout -n ";
  std::string text = "# Completion of vtrout in fish.\n" + start + "'__fish_use_subcommand' -f\n";
  const auto add_command = [&](const std::string& name, const std::string& description) {
    text += start + "'__fish_use_subcommand' -a " + name + " -d " + shell_word(escaped(description, "\\")) + '\n';
  };
  const auto add_option = [&](const std::string& when, const Argument& option) {
    text += start + shell_word(when);
    for (const std::string& name : option.names) {
      text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (option.takes == Takes::kFile) text += " -r -F";
    if (option.takes == Takes::kFolder) text += " -x -a '(__fish_complete_directories)'";
    if (option.takes == Takes::kOneOf) text += " -x -a " + shell_word(joined(option.choices, " "));
    if (option.takes == Takes::kText) text += " -x";
    text += " -d " + shell_word(escaped(option.description, "\\")) + '\n';
  };
  for (const DescribedCommand& command : program.commands)
    add_command(command.subcommand->name, command.subcommand->description);
  add_command("help", "Tell all about a subcommand");
  for (const Argument& option : program.options) add_option("__fish_use_subcommand", option);
  for (const DescribedCommand& command : program.commands) {
    for (const Argument& option : command.options) {
      add_option(std::string("__fish_seen_subcommand_from ") + command.subcommand->name, option);
    }
  }
  return text + start + "'__fish_seen_subcommand_from help' -f -a " + shell_word(command_names(program)) + '\n';
}

}  // namespace trvtrout::host::manual
