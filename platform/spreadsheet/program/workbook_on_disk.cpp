#include "platform/spreadsheet/program/workbook_on_disk.h"

#include <cerrno>
#include <utility>

#include "platform/files/replacement.h"
#include "platform/spreadsheet/program/sheet_names.h"
#include "platform/spreadsheet/program/spreadsheet_error.h"

namespace trvtrout::spreadsheet {
namespace {

constexpr const char* kVerb = "change";
[[noreturn]] void refuse_held(const std::string& path, const std::string& reason) {
  throw ServiceError(kErrorFileHeld, std::string("can't ") + kVerb + " \"" + path + "\": " + reason);
}

// Spreadsheet programs don't lock a file that they hold: they put another one beside it.
void require_unowned(const std::string& path) {
  const std::size_t slash = path.rfind('/') + 1;
  const std::string folder = path.substr(0, slash), name = path.substr(slash);
  for (const std::string& owner : {"~$" + name, ".~lock." + name + "#"}) {
    struct stat status {};
    if (lstat((folder + owner).c_str(), &status) != 0) continue;
    refuse_held(path,
                "a spreadsheet program has it open; close it there, or delete \"" + folder + owner + "\" if none has");
  }
}

std::string read_all(const platform::FileHandle& handle) {
  std::string bytes(handle.size(), '\0');
  bytes.resize(handle.read({reinterpret_cast<unsigned char*>(bytes.data()), bytes.size()}));
  return bytes;
}

struct stat status_of(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) platform::raise_file_error(errno, path, kVerb);
  return status;
}

bool unchanged(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

}  // namespace

WorkbookOnDisk::WorkbookOnDisk(std::string path)
    : path_(std::move(path)), handle_(path_, kVerb, platform::Access::kUpdate, platform::Creation::kNever) {
  require_unowned(path_);
  opened_ = status_of(path_);
  file_ = naming_file(path_, [&] { return open_workbook(read_all(handle_)); });
}

void WorkbookOnDisk::require_free(const std::u16string& sheet_name) const {
  naming_file(path_, [&] { require_sheet_name(sheet_name, file_->sheet_names()); });
}

void WorkbookOnDisk::save_with(const Sheet& sheet) {
  const std::string bytes = naming_file(path_, [&] { return file_->with_sheet(sheet); });
  platform::Replacement replacement(path_);
  replacement.write(bytes);
  if (!unchanged(opened_, status_of(path_))) {
    refuse_held(path_, "another program has changed it in the meantime; try again");
  }
  replacement.commit();
}

}  // namespace trvtrout::spreadsheet
