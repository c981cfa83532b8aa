#pragma once

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/commands.h"

namespace trvtrout::host {

// Arguments that can't be understood, in words for people.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the arguments ask for.
struct Request {
  Settings settings;
  InputOptions inputs;
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

// What an argument takes, for those who complete it: the name of a check. Behind kOneOf stand the values, with blanks
// between them.
inline constexpr const char* kTakesFile = "file";
inline constexpr const char* kTakesFolder = "folder";
inline constexpr const char* kTakesOneOf = "one of ";

// Each adds the options of one subcommand, which go into its task. Both must outlive the parsing, which raises
// UsageError for a value that can't be.
void add_info(CLI::App& command, Request& request);
void add_report(CLI::App& command, Request& request);
void add_compare(CLI::App& command, Request& request);
void add_diff(CLI::App& command, Request& request);
void add_text(CLI::App& command, Request& request);
void add_recover(CLI::App& command, Request& request);
void add_statistics(CLI::App& command, Request& request);
void add_export(CLI::App& command, Request& request);
void add_import(CLI::App& command, Request& request);

// "a, b, c"
std::string joined(const std::vector<std::string>& names, const char* separator = ", ");

}  // namespace trvtrout::host
