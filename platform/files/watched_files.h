#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "services/host_services.h"

namespace trvtrout::platform {

// Who is told how far the work on a file is, and may end it.
class FileWatch {
 public:
  virtual ~FileWatch() = default;
  // Behind each block that was read or written: `done` bytes were by then, of `total`, 0 where nobody knows. What it
  // raises comes out of the call on the file. To end an operation of the class it must be no ServiceError: a medium
  // that fails costs the class only what stands behind.
  virtual void at(const std::u16string& path, std::uint64_t done, std::uint64_t total) = 0;
};

// Files as they are, with somebody watching. Closing and looking for files isn't watched.
class WatchedFiles : public Files {
 public:
  // Both must outlive it and the files that it opens.
  WatchedFiles(Files& files, FileWatch& watch) : files_(files), watch_(watch) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override;
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override;
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return files_.SameFile(path, other);
  }

 private:
  Files& files_;
  FileWatch& watch_;
};

}  // namespace trvtrout::platform
