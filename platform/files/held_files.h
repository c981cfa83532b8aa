#pragma once

#include <map>
#include <memory>
#include <string>

#include "services/host_services.h"

namespace trvtrout::platform {

// Texts that are held in memory instead of on disk, to be handed on and not kept; other files are read as
// they are. No file on the disk stands in the way of a text.
class HeldFiles : public Files {
 public:
  // `files` must outlive it.
  explicit HeldFiles(Files& files) : files_(files) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override;
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override {
    return files_.OpenBinaryOutput(path);
  }
  // A text that is held is no file that exists.
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return files_.SameFile(path, other);
  }

 private:
  Files& files_;
  std::map<std::u16string, std::string> texts_;
};

}  // namespace trvtrout::platform
