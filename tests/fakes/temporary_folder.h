#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace trvtrout::fakes {

// An empty folder on the disk; removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "trvtrout-test-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("can't make a temporary folder: " + path_);
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string at(const std::string& name) const { return path_ + "/" + name; }
  // The path of a file that is made here.
  std::string put(const std::string& name, const std::string& bytes) const {
    std::ofstream(at(name), std::ios::binary) << bytes;
    return at(name);
  }

 private:
  std::string path_;
};

inline std::string get_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace trvtrout::fakes
