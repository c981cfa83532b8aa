#include "platform/files/watched_files.h"

#include <utility>

namespace trvtrout::platform {
namespace {

// A file and how far it is.
template <class Interface>
class Watched : public Interface {
 public:
  Watched(std::unique_ptr<Interface> behind, std::u16string path, FileWatch& watch)
      : behind_(std::move(behind)), path_(std::move(path)), watch_(watch) {}
  void Close() override { behind_->Close(); }

 protected:
  Interface& behind() { return *behind_; }
  void go_to(std::uint64_t offset) { done_ = offset; }
  std::uint64_t go_on(std::uint64_t bytes) { return done_ += bytes; }
  void tell(std::uint64_t total = 0) { watch_.at(path_, done_, total); }

 private:
  std::unique_ptr<Interface> behind_;
  std::u16string path_;
  FileWatch& watch_;
  std::uint64_t done_ = 0;
};

class WatchedInput : public Watched<BinaryFile> {
 public:
  using Watched::Watched;
  std::uint64_t Size() override { return total_ = behind().Size(); }
  std::size_t Read(std::span<unsigned char> into) override {
    const std::size_t count = behind().Read(into);
    go_on(count);
    tell(total_);
    return count;
  }
  bool SkipTo(std::uint64_t offset) override {
    if (!behind().SkipTo(offset)) return false;
    go_to(offset);
    return true;
  }

 private:
  std::uint64_t total_ = 0;
};

class WatchedOutput : public Watched<BinaryOutput> {
 public:
  using Watched::Watched;
  void Write(std::string_view bytes) override {
    behind().Write(bytes);
    go_on(bytes.size());
    tell();
  }
};

// Lines are short: somebody is told of some of them.
class WatchedText : public Watched<TextStream> {
 public:
  using Watched::Watched;
  void WriteLine(std::string_view text) override {
    behind().WriteLine(text);
    count(text.size() + 2);
  }
  void Write(std::string_view text) override {
    behind().Write(text);
    count(text.size());
  }

 private:
  static constexpr std::size_t kBlock = 4096;
  void count(std::size_t bytes) {
    const std::uint64_t done = go_on(bytes);
    if (done < next_) return;
    next_ = done + kBlock;
    tell();
  }

  std::uint64_t next_ = 0;  // when somebody is told
};

class WatchedFileSystem : public FileSystemObject {
 public:
  WatchedFileSystem(std::unique_ptr<FileSystemObject> behind, FileWatch& watch)
      : behind_(std::move(behind)), watch_(watch) {}
  std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
    return std::make_unique<WatchedText>(behind_->CreateTextFile(path, overwrite, unicode), path, watch_);
  }
  bool FileExists(const std::u16string& path) override { return behind_->FileExists(path); }
  void DeleteFile(const std::u16string& path) override { behind_->DeleteFile(path); }

 private:
  std::unique_ptr<FileSystemObject> behind_;
  FileWatch& watch_;
};

}  // namespace

std::unique_ptr<FileSystemObject> WatchedFiles::CreateFileSystemObject() {
  return std::make_unique<WatchedFileSystem>(files_.CreateFileSystemObject(), watch_);
}

std::unique_ptr<BinaryFile> WatchedFiles::OpenBinary(const std::u16string& path) {
  return std::make_unique<WatchedInput>(files_.OpenBinary(path), path, watch_);
}

std::unique_ptr<BinaryOutput> WatchedFiles::OpenBinaryOutput(const std::u16string& path) {
  return std::make_unique<WatchedOutput>(files_.OpenBinaryOutput(path), path, watch_);
}

}  // namespace trvtrout::platform
