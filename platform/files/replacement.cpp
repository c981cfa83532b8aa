#include "platform/files/replacement.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/files/path.h"
#include "services/host_services.h"

namespace trvtrout::platform {
namespace {

constexpr const char* kVerb = "write";

// Not over a file that has come to stand there. The error number of the machine, 0 for none.
int rename_to_new(const std::string& from, const std::string& to) noexcept {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL) return errno;  // what a file system says that doesn't know the flag
  return name_is_taken(to) ? EEXIST : std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

std::string behind_links(const std::string& path) {
  std::error_code none;
  const auto real = std::filesystem::canonical(path, none);
  if (!none) return real.string();
  // A new name in its place would take the link away from whoever made it.
  if (std::filesystem::is_symlink(path, none)) {
    refuse_file(ErrorNumber::kBadFileName, kVerb, path, "it's a link that leads nowhere");
  }
  return path;
}

void require_writable_folder(const std::string& folder) {
  constexpr auto kFolderVerb = "write into";
  std::error_code none;
  if (!std::filesystem::is_directory(folder, none)) {
    refuse_file(ErrorNumber::kNoSuchFolder, kFolderVerb, folder, "there is no such folder");
  }
  const std::string trial = temporary_path_beside(folder + '/');
  const Unfinished unfinished(trial);
  const int descriptor = open(trial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) raise_file_error(errno, folder, kFolderVerb);
  unfinished.is_there();
  close(descriptor);
  unlink(trial.c_str());
}

bool name_is_taken(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

Replacement::Replacement(const std::string& path, std::string model, const std::string& told_as)
    : path_(behind_links(path)),
      told_as_(told_as.empty() ? path_ : told_as),
      model_(std::move(model)),
      temporary_path_(temporary_path_beside(path_)),
      unfinished_(temporary_path_),
      file_(temporary_path_, kVerb, Access::kWrite, Creation::kOnlyNew, told_as_) {
  unfinished_->is_there();
}

Replacement::~Replacement() {
  if (!temporary_path_.empty()) unlink(temporary_path_.c_str());
}

void Replacement::write(std::string_view bytes) {
  if (const int error = file_.write(bytes); error != 0) raise_file_error(error, told_as_, kVerb);
}

void Replacement::finish() {
  if (finished_) return;
  file_.take_rights_of(name_is_taken(path_) ? path_ : model_);
  if (waits_for_disk_) file_.sync();
  if (const int error = file_.close(); error != 0) raise_file_error(error, told_as_, kVerb);
  finished_ = true;
}

// The temporary name is nobody's any more.
void Replacement::settle() {
  unfinished_.reset();
  temporary_path_.clear();
}

void Replacement::commit() {
  finish();
  if (std::rename(temporary_path_.c_str(), path_.c_str()) != 0) raise_file_error(errno, told_as_, kVerb);
  settle();
}

void Replacement::commit_new() {
  finish();
  if (const int error = rename_to_new(temporary_path_, path_); error != 0) raise_file_error(error, told_as_, kVerb);
  settle();
}

}  // namespace trvtrout::platform
