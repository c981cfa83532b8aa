#pragma once

#include "services/host_services.h"

namespace trvtrout::windows {

// Text files by "Scripting.FileSystemObject", binary files by the system, with its sharing: others may read a file
// that is being read or written, and write one that is being read.
class SystemFiles : public Files {
 public:
  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override;
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override;
  bool SameFile(const std::u16string& path, const std::u16string& other) override;
};

// Whether there is a file at `path` that can't be written, because another program holds it or the rights are missing.
bool is_held(const std::u16string& path);

}  // namespace trvtrout::windows
