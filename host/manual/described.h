#pragma once

#include <string>
#include <vector>

#include "host/subcommands.h"

// The command's arguments as data: what its manual and the shells' completions are made from.
namespace trvtrout::host::manual {

enum class Takes { kNothing, kFile, kFolder, kOneOf, kText };

struct Argument {
  std::vector<std::string> names;  // "-q", "--quiet"; of an operand, one name
  std::string value;               // what stands for its value: "FOLDER", "[OUT]"; empty for none
  Takes takes = Takes::kNothing;
  std::vector<std::string> choices;  // of kOneOf
  std::string description;
  std::string standard;  // its value if it isn't given; empty for none
  bool required = false;
  bool repeated = false;  // may be given several times
};

struct DescribedCommand {
  const Subcommand* subcommand;
  std::vector<Argument> options, operands;
};

struct DescribedProgram {
  std::string description;  // paragraphs, between which examples begin with blanks
  std::vector<Argument> options;
  std::vector<DescribedCommand> commands;
};

DescribedProgram described_program();

// Each as the text of one file.
std::string man_page(const DescribedProgram& program);
std::string bash_completion(const DescribedProgram& program);
std::string zsh_completion(const DescribedProgram& program);
std::string fish_completion(const DescribedProgram& program);

}  // namespace trvtrout::host::manual
