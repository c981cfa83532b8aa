#include "platform/files/replacement.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <unistd.h>

#include "platform/files/path.h"

namespace trvtrout::platform {
namespace {

constexpr const char* kVerb = "write";

std::string behind_links(const std::string& path) {
  std::error_code none;
  const auto real = std::filesystem::canonical(path, none);
  return none ? path : real.string();
}

}  // namespace

Replacement::Replacement(const std::string& path)
    : path_(behind_links(path)),
      temporary_path_(temporary_path_beside(path_)),
      file_(temporary_path_, kVerb, Access::kWrite, Creation::kOnlyNew) {}

Replacement::~Replacement() {
  if (!temporary_path_.empty()) unlink(temporary_path_.c_str());
}

void Replacement::write(std::string_view bytes) {
  if (const int error = file_.write(bytes); error != 0) raise_file_error(error, path_, kVerb);
}

void Replacement::finish() {
  if (finished_) return;
  file_.take_rights_of(path_);
  file_.sync();
  if (const int error = file_.close(); error != 0) raise_file_error(error, path_, kVerb);
  finished_ = true;
}

void Replacement::commit() {
  finish();
  if (std::rename(temporary_path_.c_str(), path_.c_str()) != 0) raise_file_error(errno, path_, kVerb);
  temporary_path_.clear();
}

}  // namespace trvtrout::platform
