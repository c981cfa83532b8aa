#pragma once

#include <optional>
#include <string>

#include "services/host_services.h"

namespace trvtrout::host {

// A file to write.
struct Target {
  std::u16string path;    // as the class knows it
  bool replaces = false;  // a file that stands there; the user has agreed
};

// What a new file is made of, and where it goes.
struct NewFile {
  const std::string& source;  // a file that is read, and never overwritten
  const char* source_is;      // what people are told that it is: "the damaged file"
  const std::string& given;   // empty for a name beside the source
  std::u16string desc_name;   // as GetOutputFileName takes it
  const char* option = "";    // how a name is given, if it needn't be: "; give one with --output"
  std::string folder = {};    // for a name in this folder; empty for beside the source
};

inline constexpr const char* kNothingWritten = "; nothing was written";

// Asks about a file that stands there. Nothing when there is no file to write, of which the user has been told.
std::optional<Target> target_for(const HostServices& services, const NewFile& file);

}  // namespace trvtrout::host
