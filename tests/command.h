#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "tests/fakes/temporary_folder.h"
#include "tests/support.h"

// The command, as a person runs it: real files in an empty folder, output through pipes.
namespace trvtrout::tests {

namespace fs = std::filesystem;

struct Outcome {
  int status;
  std::string out, err;
};

class Command : public testing::Test {
 protected:
  void put(const std::string& name, const std::string& bytes) {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
  }

  // Runs `vtrout ARGUMENTS` in the folder, by a shell.
  Outcome vtrout(const std::string& arguments) {
    const std::string command = "cd '" + folder_.string() + "' && '" VTROUT "' " + arguments + " >../" +
                                out_.filename().string() + " 2>../" + err_.filename().string() + " </dev/null";
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), file_bytes(out_.string()), file_bytes(err_.string())};
  }

  static std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) all.push_back(line);
    return all;
  }

  fakes::TemporaryFolder temporary_;
  fs::path folder_ = fs::path(temporary_.at("work"));
  fs::path out_ = temporary_.at("out");
  fs::path err_ = temporary_.at("err");
  bool made_ = fs::create_directory(folder_);
};

}  // namespace trvtrout::tests
