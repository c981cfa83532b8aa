#include "platform/files/local_files.h"

#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/files/file_handle.h"
#include "platform/files/path.h"

namespace trvtrout::platform {
namespace {

constexpr std::size_t kBufferSize = 65536;

class LocalTextStream : public TextStream {
 public:
  explicit LocalTextStream(FileHandle file) : file_(std::move(file)) { buffer_.reserve(kBufferSize); }
  ~LocalTextStream() override { flush(); }
  LocalTextStream(const LocalTextStream&) = delete;
  LocalTextStream& operator=(const LocalTextStream&) = delete;

  void WriteLine(std::string_view text) override {
    append(text);
    append("\r\n");
  }
  void Write(std::string_view text) override { append(text); }
  void Close() override {
    flush();
    const int error = file_.close();
    if (error_ == 0) error_ = error;
    if (error_ != 0) file_.raise(error_);
  }

 private:
  void append(std::string_view text) {
    if (buffer_.size() + text.size() > kBufferSize) flush();
    if (text.size() > kBufferSize) {
      write(text);
    } else {
      buffer_.append(text);
    }
    if (error_ != 0) file_.raise(error_);
  }
  void flush() noexcept {
    write(buffer_);
    buffer_.clear();
  }
  // After a failed write nothing more may go out: it would stand behind a gap.
  void write(std::string_view bytes) noexcept {
    if (error_ == 0) error_ = file_.write(bytes);
  }

  FileHandle file_;
  std::string buffer_;
  int error_ = 0;
};

class LocalBinaryFile : public BinaryFile {
 public:
  explicit LocalBinaryFile(FileHandle file) : file_(std::move(file)) {}

  std::uint64_t Size() override { return file_.size(); }
  std::size_t Read(std::span<unsigned char> into) override { return file_.read(into); }
  void Close() override {
    if (const int error = file_.close(); error != 0) file_.raise(error);
  }

 private:
  FileHandle file_;
};

class LocalBinaryOutput : public BinaryOutput {
 public:
  explicit LocalBinaryOutput(FileHandle file) : file_(std::move(file)) {}

  void Write(std::string_view bytes) override {
    if (const int error = file_.write(bytes); error != 0) file_.raise(error);
  }
  void Close() override {
    if (const int error = file_.close(); error != 0) file_.raise(error);
  }

 private:
  FileHandle file_;
};

class LocalFileSystem : public FileSystemObject {
 public:
  std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) override {
    if (path.empty()) throw ServiceError(ErrorNumber::kInvalidCall, "can't write a file: no path was given");
    const std::string name = machine_path(path);
    if (unicode) refuse_file(ErrorNumber::kInvalidCall, "write", name, "16-bit text files aren't supported");
    FileHandle file(name, "write", Access::kWrite, overwrite ? Creation::kIfMissing : Creation::kOnlyNew);
    file.truncate();
    return std::make_unique<LocalTextStream>(std::move(file));
  }

  bool FileExists(const std::u16string& path) override {
    const std::string name = machine_path(path);
    struct stat status {};
    return name.find('\0') == std::string::npos && stat(name.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
  }

  // Opening for writing first: a file that may not be written, or that another program reads, isn't deleted either.
  void DeleteFile(const std::u16string& path) override {
    constexpr auto kVerb = "delete";
    const std::string name = machine_path(path);
    if (!FileExists(path)) raise_file_error(ENOENT, name, kVerb);
    const FileHandle file(name, kVerb, Access::kWrite, Creation::kNever);
    if (unlink(name.c_str()) != 0) file.raise(errno);
  }
};

}  // namespace

std::unique_ptr<FileSystemObject> LocalFiles::CreateFileSystemObject() { return std::make_unique<LocalFileSystem>(); }

std::unique_ptr<BinaryFile> LocalFiles::OpenBinary(const std::u16string& path) {
  const Creation creation = missing_ == MissingFile::kCreate ? Creation::kIfMissing : Creation::kNever;
  return std::make_unique<LocalBinaryFile>(FileHandle(machine_path(path), "read", Access::kRead, creation));
}

std::unique_ptr<BinaryOutput> LocalFiles::OpenBinaryOutput(const std::u16string& path) {
  return std::make_unique<LocalBinaryOutput>(
      FileHandle(machine_path(path), "write", Access::kWrite, Creation::kIfMissing));
}

bool LocalFiles::SameFile(const std::u16string& path, const std::u16string& other) {
  struct stat one {
  }, two{};
  return stat(machine_path(path).c_str(), &one) == 0 && stat(machine_path(other).c_str(), &two) == 0 &&
         one.st_dev == two.st_dev && one.st_ino == two.st_ino;
}

}  // namespace trvtrout::platform
