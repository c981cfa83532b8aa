#pragma once

#include <memory>
#include <string>

#include "reports/host_services.h"

namespace trvtrout::platform {

// The files of the machine. A file that is open here is locked for other programs, and one that another program has
// locked, by flock or by a record lock, is held.
class LocalFiles : public Files {
 public:
  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  // Only regular files.
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override;
};

}  // namespace trvtrout::platform
