#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
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
  void put(const std::string& name, const std::string& bytes) const { folder_.put(name, bytes); }
  std::string get(const std::string& name) const { return file_bytes(folder_.at(name)); }
  fs::path at(const std::string& name) const { return folder_.at(name); }

  // What stands in the folder, links as such.
  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::directory_iterator(at(""))) {
      std::string& content = all[entry.path().filename()];
      if (entry.is_symlink()) {
        content = "-> " + fs::read_symlink(entry.path()).string();
      } else if (entry.is_regular_file()) {
        content = file_bytes(entry.path());
      }
    }
    return all;
  }

  // Runs the commands in the folder, where `vtrout` is the one under test.
  Outcome shell(const std::string& commands) const {
    const std::string command = "cd '" + folder_.at("") + "' && PATH=\"$(dirname '" VTROUT "'):$PATH\" && (" +
                                commands + ") >'" + output_.at("out") + "' 2>'" + output_.at("err") + "' </dev/null";
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), file_bytes(output_.at("out")), file_bytes(output_.at("err"))};
  }
  Outcome vtrout(const std::string& arguments) const { return shell("vtrout " + arguments); }

  // Runs the commands and expects that they're refused, with the reason, and that all files stay as they are.
  Outcome expect_refused(const std::string& commands, const std::string& reason) const {
    const auto before = files();
    Outcome run = shell(commands);
    EXPECT_EQ(run.status, 2) << commands;
    EXPECT_EQ(run.out, "") << commands;
    EXPECT_NE(run.err.find(reason), std::string::npos) << commands << run.err;
    EXPECT_TRUE(files() == before) << commands;
    return run;
  }

  static std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> all;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) all.push_back(line);
    return all;
  }

 private:
  fakes::TemporaryFolder folder_, output_;
};

}  // namespace trvtrout::tests
