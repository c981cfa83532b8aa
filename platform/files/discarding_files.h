#pragma once

#include <memory>
#include <string>

#include "services/host_services.h"

namespace trvtrout::platform {

// Files that are read as they are and written nowhere: for wanting an operation's result without its file. No file
// stands in the way of a new one.
class DiscardingFiles : public Files {
 public:
  // `files` must outlive it.
  explicit DiscardingFiles(Files& files) : files_(files) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override { return std::make_unique<FileSystem>(); }
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override { return files_.OpenBinary(path); }
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string&) override { return std::make_unique<Output>(); }
  // Nothing is written, so nothing can be written over.
  bool SameFile(const std::u16string&, const std::u16string&) override { return false; }

 private:
  struct Stream : TextStream {
    void WriteLine(std::string_view) override {}
    void Write(std::string_view) override {}
    void Close() override {}
  };
  struct Output : BinaryOutput {
    void Write(std::string_view) override {}
    void Close() override {}
  };
  struct FileSystem : FileSystemObject {
    std::unique_ptr<TextStream> CreateTextFile(const std::u16string&, bool, bool) override {
      return std::make_unique<Stream>();
    }
    bool FileExists(const std::u16string&) override { return false; }
    void DeleteFile(const std::u16string&) override {}
  };

  Files& files_;
};

}  // namespace trvtrout::platform
