#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/batch/inputs.h"
#include "host/batch/ordered_run.h"
#include "host/machine.h"

namespace trvtrout::host {

// What is done with many files, in words for people, and the work itself.
struct Batch {
  const char* subcommand;
  const char* remark;              // what a file is called whose status is kRemarkable: "damaged"
  std::vector<std::string> files;  // their names, for people
  // On any thread; with these settings, questions wait for the file's turn.
  std::function<ExitStatus(const Settings& settings, std::size_t file)> work;
  // On the calling thread, in order, behind what the work has written; what it raises ends the batch. May be empty.
  std::function<void(std::size_t file, FileOutcome& outcome)> told = {};
  // How many files for each thread may be done before their turn has come.
  std::size_t ahead = 4;
};

struct BatchEnd {
  ExitStatus status = kFine;  // the worst
  std::size_t done = 0;
  int signal = 0;  // by which it was stopped; 0 for none
};

// Does it, with progress, log and a line at the end. Raises ServiceError when the log can't be written to.
BatchEnd run_batch(const Settings& settings, const InputOptions& options, const Batch& batch);

// The exit status, or the end of the program as the signal ends it.
ExitStatus finish_batch(const BatchEnd& end);

// What is done with one file, with the same log.
ExitStatus run_one(const InputOptions& options, const char* subcommand, const std::string& file,
                   const std::function<ExitStatus()>& work);

// Whether any file or folder was named; the user is told when none was.
bool has_operands(const InputOptions& options, const char* subcommand);

// The folder for what is written about a file that was found in a folder: as far below `folder` as the file is below
// the one that was named, so that files with one name don't meet. It's made if need be; raises
// std::filesystem::filesystem_error.
std::string folder_for(const std::string& folder, const Input& file);

// False when the new files of this one would get the names of another one's, of which the user is told. `owners`: as
// owners_of_names gives them.
bool has_own_names(const std::vector<Input>& files, const std::vector<std::size_t>& owners, std::size_t number);

// What a program is told in place of the JSON of a file with which nothing could be done.
void show_trouble_json(const std::string& file);

}  // namespace trvtrout::host
