#include <sstream>

#include "host/manual/described.h"

namespace trvtrout::host::manual {
namespace {

// As the formatter takes a text for itself: no hyphen that may be broken at, no request at the start of a line.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char sign : text) {
    if (sign == '\\') {
      result += "\\e";
    } else if (sign == '-') {
      result += "\\-";
    } else {
      if ((sign == '.' || sign == '\'') && (result.empty() || result.back() == '\n')) result += "\\&";
      result += sign;
    }
  }
  return result;
}

// Without the line ends and the blanks that arrange a text for the terminal.
std::string one_line(const std::string& text) {
  std::istringstream words(text);
  std::vector<std::string> found;
  for (std::string word; words >> word;) found.push_back(word);
  return joined(found, " ");
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

// Lines that begin with blanks stay lines; the others are one paragraph, and an empty line ends it.
std::string paragraphs(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  bool is_kept = false, is_new = true;
  for (std::string line; std::getline(lines, line);) {
    const bool keeps = line.starts_with("  ");
    if (keeps != is_kept) result += keeps ? ".PP\n.nf\n" : ".fi\n";
    if (line.empty()) {
      is_new = true;
    } else {
      if (is_new && !keeps) result += ".PP\n";
      is_new = false;
      result += escaped(line) + '\n';
    }
    is_kept = keeps;
  }
  return result + (is_kept ? ".fi\n" : "");
}

std::string operand_text(const Argument& operand) {
  const std::string name = italic(operand.names.front()) + (operand.repeated ? " ..." : "");
  return operand.required ? name : '[' + name + ']';
}

std::string synopsis(const DescribedCommand& command) {
  std::string text = bold("vtrout " + std::string(command.subcommand->name)) + " [" + italic("OPTION") + " ...]";
  for (const Argument& operand : command.operands) text += ' ' + operand_text(operand);
  return text + '\n';
}

// The tag of an argument, and what it says.
std::string entry(const Argument& argument, bool is_operand) {
  std::string tag;
  for (const std::string& name : argument.names) {
    tag += (tag.empty() ? "" : ", ") + (is_operand ? italic(name) : bold(name));
  }
  if (!is_operand && !argument.value.empty()) tag += ' ' + italic(argument.value);
  std::string text = ".TP\n" + tag + '\n' + escaped(argument.description);
  if (!argument.standard.empty()) text += "; by default " + escaped(argument.standard);
  return text + ".\n";
}

std::string section(const DescribedCommand& command) {
  const Subcommand& subcommand = *command.subcommand;
  std::string text = ".SS \"" + escaped(std::string("vtrout ") + subcommand.name) + "\"\n" + synopsis(command) +
                     ".PP\n" + escaped(subcommand.description) + ".\n";
  for (const Argument& operand : command.operands) text += entry(operand, true);
  for (const Argument& option : command.options) text += entry(option, false);
  for (const char* const note : subcommand.notes) text += note == nullptr ? "" : paragraphs(note);
  std::string examples;
  for (const char* const example : subcommand.examples) {
    if (example != nullptr) examples += std::string("  ") + example + '\n';
  }
  text += paragraphs("Examples:\n" + examples) + paragraphs("Exit status:");
  for (std::size_t status = 0; status < std::size(subcommand.statuses); ++status) {
    const char* const meaning = subcommand.statuses[status];
    if (meaning != nullptr) text += ".TP\n" + std::to_string(status) + '\n' + escaped(one_line(meaning)) + ".\n";
  }
  return text;
}

}  // namespace

std::string man_page(const DescribedProgram& program) {
  std::string text = ".TH VTROUT 1 \"\" \"vtrout " VTROUT_VERSION
                     "\" \"User Commands\"\n.nh\n.ad l\n"
                     ".SH NAME\nvtrout \\- report on, compare, export and save binary VTR files\n.SH SYNOPSIS\n";
  for (const DescribedCommand& command : program.commands) text += synopsis(command) + ".br\n";
  text += bold("vtrout help") + " [" + italic("COMMAND") + "]\n.SH DESCRIPTION\n" + paragraphs(program.description) +
          ".SH OPTIONS\n";
  for (const Argument& option : program.options) text += entry(option, false);
  text += ".SH COMMANDS\n";
  for (const DescribedCommand& command : program.commands) text += section(command);
  return text + ".SH SEE ALSO\nWhat is called docs/ above is installed with the command, as share/doc/vtrout/.\n";
}

}  // namespace trvtrout::host::manual
