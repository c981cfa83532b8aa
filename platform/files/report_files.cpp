#include "platform/files/report_files.h"

#include <cerrno>
#include <utility>

#include "platform/files/file_handle.h"
#include "platform/files/path.h"
#include "platform/files/text_output.h"

namespace trvtrout::platform {

class ReportFiles::FileSystem : public FileSystemObject {
 public:
  explicit FileSystem(ReportFiles& owner) : owner_(owner), behind_(owner.files_.CreateFileSystemObject()) {}

  std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool, bool) override {
    owner_.staged_.reset();
    owner_.replaces_ = behind_->FileExists(path);
    if (owner_.replaces_ && !owner_.told_of_.contains(path)) raise_file_error(EEXIST, machine_path(path), "write");
    auto staged = std::make_unique<StagedFiles>(owner_.files_);
    auto stream = std::make_unique<TextOutput>(staged->OpenBinaryOutput(path));
    if (!owner_.replaces_) staged->need_not_be_safe();
    owner_.staged_ = std::move(staged);
    return stream;
  }
  bool FileExists(const std::u16string& path) override {
    if (path == owner_.passed_over_) {
      owner_.passed_over_.clear();
      return false;
    }
    const bool exists = behind_->FileExists(path);
    if (exists) owner_.told_of_.insert(path);
    return exists;
  }
  void DeleteFile(const std::u16string& path) override { behind_->DeleteFile(path); }

 private:
  ReportFiles& owner_;
  std::unique_ptr<FileSystemObject> behind_;
};

std::unique_ptr<FileSystemObject> ReportFiles::CreateFileSystemObject() { return std::make_unique<FileSystem>(*this); }

Placed ReportFiles::place(bool whole) {
  const auto staged = std::move(staged_);
  if (!staged) return Placed::kNothing;
  if (replaces_ && !whole) return Placed::kOldStays;
  staged->commit(replaces_);
  return Placed::kText;
}

}  // namespace trvtrout::platform
