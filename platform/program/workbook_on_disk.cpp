#include "platform/program/workbook_on_disk.h"

#include <algorithm>
#include <thread>

#include "platform/files/replacement.h"
#include "platform/program/sheet_names.h"
#include "platform/program/spreadsheet_error.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

[[noreturn]] void refuse_held(const std::string& file, const std::string& reason) {
  refuse_file(ErrorNumber::kFileHeld, kChange, file, reason);
}

// Spreadsheet programs don't lock a file that they hold: they put another one beside it.
void require_unowned(const std::string& path, const std::string& told_as) {
  const std::size_t slash = path.rfind('/') + 1;
  const std::string folder = path.substr(0, slash), name = path.substr(slash);
  for (const std::string& owner : {"~$" + name, ".~lock." + name + "#"}) {
    struct stat status {};
    if (lstat((folder + owner).c_str(), &status) != 0) continue;
    refuse_held(told_as,
                "a spreadsheet program has it open; close it there, or delete \"" + folder + owner + "\" if none does");
  }
}

bool unchanged(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         one.st_mtim.tv_sec == other.st_mtim.tv_sec && one.st_mtim.tv_nsec == other.st_mtim.tv_nsec;
}

// Whether the open file still is the one at `path`: who held it may have put another one there.
bool is_at(const FileHandle& handle, const std::string& path) {
  struct stat now {};
  const struct stat opened = handle.status();
  return stat(path.c_str(), &now) == 0 && now.st_dev == opened.st_dev && now.st_ino == opened.st_ino;
}

// Tries again until the file isn't locked any more or the time is over.
FileHandle open_within(std::chrono::seconds wait, const std::string& path, const std::string& told_as) {
  using Clock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds kPause{100};
  const auto end = Clock::now() + wait;
  while (true) {
    try {
      FileHandle handle(path, kChange, Access::kUpdate, Creation::kNever, told_as);
      if (is_at(handle, path) || Clock::now() >= end) return handle;
    } catch (const FileLocked& locked) {
      if (wait.count() == 0) throw;
      if (Clock::now() >= end)
        throw FileLocked(locked.number(), locked.what() + (", also after a wait of " + std::to_string(wait.count())) +
                                              (wait.count() == 1 ? " second" : " seconds"));
    }
    std::this_thread::sleep_for(std::min<Clock::duration>(kPause, end - Clock::now()));
  }
}

}  // namespace

WorkbookOnDisk::WorkbookOnDisk(const std::string& path, const std::string& told_as, WorkbookRules rules)
    : path_(platform::behind_links(path)),
      told_as_(told_as.empty() ? path_ : told_as),
      rules_(std::move(rules)),
      handle_(open_within(rules_.wait, path_, told_as.empty() ? path : told_as)),
      opened_(handle_.status()) {
  require_unowned(path_, told_as_);
  file_ = naming_file(handle_.told_as(), [&] { return open_workbook(handle_.read_rest()); });
}

std::string WorkbookOnDisk::bytes() const {
  handle_.rewind();
  return handle_.read_rest();
}

void WorkbookOnDisk::require_room_for(const std::u16string& sheet_name) const {
  naming_file(told_as_, [&] {
    const auto same = sheet_named(text::to_utf8(sheet_name), file_->sheet_names());
    if (same && !rules_.exchanged.empty()) return file_->require_exchangeable(*same, rules_.exchanged);
    require_sheet_name(sheet_name, file_->sheet_names());
  });
}

void WorkbookOnDisk::require_unchanged() const {
  struct stat now {};
  if (stat(path_.c_str(), &now) != 0 || !unchanged(opened_, now)) {
    refuse_held(told_as_, "another program has changed it in the meantime; try again");
  }
  require_unowned(path_, told_as_);
}

void WorkbookOnDisk::save_with(const Sheet& sheet) {
  const std::string bytes = naming_file(told_as_, [&] {
    const auto same = sheet_named(sheet.name, file_->sheet_names());
    return same ? file_->with_content(*same, sheet, rules_.exchanged) : file_->with_sheet(sheet);
  });
  platform::Replacement replacement(path_, {}, told_as_);
  replacement.write(bytes);
  replacement.finish();
  require_unchanged();
  replacement.commit();
}

}  // namespace trvtrout::platform
