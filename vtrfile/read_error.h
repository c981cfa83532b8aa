#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace trvtrout::vtrfile {

// Bytes that can't be taken as a record: where they stand in the file, which record path was being read
// ("Schema/Tables/Items[12]/Fields/Items[3]/Spare[2]", positions counted from 1) and what was found there.
class ReadError : public std::exception {
 public:
  ReadError(std::uint64_t offset, std::string found) : offset_(offset), found_(std::move(found)) {}

  std::uint64_t offset() const noexcept { return offset_; }
  const std::string& path() const noexcept { return path_; }
  const std::string& found() const noexcept { return found_; }
  const char* what() const noexcept override { return found_.c_str(); }

  // Each level that the error passes puts its own step in front.
  void enter(const std::string& field) {
    path_ = path_.empty() || path_[0] == '[' ? field + path_ : field + '/' + path_;
  }
  void enter(std::uint64_t position) { enter('[' + std::to_string(position) + ']'); }

 private:
  std::uint64_t offset_;
  std::string found_;
  std::string path_;
};

}  // namespace trvtrout::vtrfile
