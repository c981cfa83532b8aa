#include "platform/files/local_files.h"

#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/files/file_handle.h"
#include "platform/files/path.h"
#include "platform/files/text_output.h"

namespace trvtrout::platform {
namespace {

class LocalBinaryFile : public BinaryFile {
 public:
  explicit LocalBinaryFile(FileHandle file) : file_(std::move(file)) {}

  std::uint64_t Size() override { return file_.size(); }
  std::size_t Read(std::span<unsigned char> into) override { return file_.read(into); }
  bool SkipTo(std::uint64_t offset) override { return file_.seek(offset), true; }
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
    return std::make_unique<TextOutput>(std::make_unique<LocalBinaryOutput>(std::move(file)));
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
