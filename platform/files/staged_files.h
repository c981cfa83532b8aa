#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/files/file_handle.h"
#include "platform/files/replacement.h"
#include "services/host_services.h"

namespace trvtrout::platform {

// Files of which the one that is opened with OpenBinaryOutput isn't written in place: its content stands beside it
// until commit() puts it there, and without commit() the file is as it was. All else goes to the files behind.
class StagedFiles : public Files {
 public:
  // `files` must outlive it. A file that is new will have the rights of the one at `model`, a path of the machine.
  explicit StagedFiles(Files& files, std::string model = {}) : files_(files), model_(std::move(model)) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override { return files_.CreateFileSystemObject(); }
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override { return files_.OpenBinary(path); }
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return files_.SameFile(path, other);
  }
  // May be called once. A file that stands there is held until the end; one that may not be written is refused.
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override;

  // All only after OpenBinaryOutput. As the replacement says:
  void need_not_be_safe() { replacement_->need_not_be_safe(); }
  // Where the content can be read once it was closed:
  std::u16string content_path() const;
  // With `replaces` False nothing may stand in the file's place. Raises ServiceError.
  void commit(bool replaces) { replaces ? replacement_->commit() : replacement_->commit_new(); }

 private:
  Files& files_;
  std::string model_;
  std::optional<FileHandle> standing_;
  std::optional<Replacement> replacement_;
};

}  // namespace trvtrout::platform
