#pragma once

#include <string>

#include "host/batch/ordered_run.h"
#include "platform/files/file_handle.h"

namespace trvtrout::host {

// A text file that gets a line for each file that was worked on, behind what stands in it from earlier runs.
class BatchLog {
 public:
  // Raises ServiceError, also for a file that isn't such a log.
  BatchLog(const std::string& path, const std::string& subcommand, std::size_t files);
  // Raises ServiceError.
  void add(const std::string& file, const FileOutcome& outcome);

 private:
  void write(const std::string& line);

  platform::FileHandle file_;
};

}  // namespace trvtrout::host
