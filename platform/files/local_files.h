#pragma once

#include <memory>
#include <string>

#include "services/host_services.h"

namespace trvtrout::platform {

// What becomes of a file that is opened for reading and doesn't exist.
enum class MissingFile { kCreate, kRefuse };

// The files of the machine. A file that is open here is locked for other programs, and one that another program has
// locked, by flock or by a record lock, is held.
class LocalFiles : public Files {
 public:
  explicit LocalFiles(MissingFile missing = MissingFile::kCreate) : missing_(missing) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  // Only regular files.
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override;
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override;
  bool SameFile(const std::u16string& path, const std::u16string& other) override;

 private:
  MissingFile missing_;
};

}  // namespace trvtrout::platform
