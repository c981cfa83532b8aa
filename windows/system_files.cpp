#include "windows/system_files.h"

#include <algorithm>
#include <utility>

#include "windows/errors.h"
#include "windows/scripting_files.h"

namespace trvtrout::windows {
namespace {

// The most bytes that one call reads or writes.
constexpr std::size_t kMaxTransfer = 1U << 30;

class Handle {
 public:
  Handle(const std::u16string& path, DWORD access, DWORD sharing, DWORD creation, DWORD attributes)
      : handle_(CreateFileW(wide(path), access, sharing, nullptr, creation, attributes, nullptr)) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&&) = delete;
  ~Handle() { close(); }

  bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }
  bool close() {
    const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
    return handle == INVALID_HANDLE_VALUE || CloseHandle(handle);
  }

 private:
  HANDLE handle_;
};

// A file that is open, with what is said of it when something fails.
class OpenFile {
 public:
  OpenFile(const std::u16string& path, const char* verb, DWORD access, DWORD sharing)
      : path_(path), verb_(verb), handle_(open(access, sharing)) {
    if (!handle_.is_open()) raise(opening_error());
    if (GetFileType(handle_.get()) != FILE_TYPE_DISK) raise(ERROR_DIRECTORY);
  }

  std::uint64_t size() const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(handle_.get(), &size)) raise(GetLastError());
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  std::size_t read(std::span<unsigned char> into) const {
    std::size_t filled = 0;
    while (filled < into.size()) {
      DWORD count = 0;
      const auto wanted = static_cast<DWORD>(std::min(kMaxTransfer, into.size() - filled));
      if (!ReadFile(handle_.get(), into.data() + filled, wanted, &count, nullptr)) {
        if (filled > 0) break;  // what came counts; the next call tells
        raise(GetLastError());
      }
      if (count == 0) break;
      filled += count;
    }
    return filled;
  }

  bool seek(std::uint64_t offset) const {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(offset);
    return SetFilePointerEx(handle_.get(), place, nullptr, FILE_BEGIN);
  }

  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      DWORD count = 0;
      const auto wanted = static_cast<DWORD>(std::min(kMaxTransfer, bytes.size()));
      if (!WriteFile(handle_.get(), bytes.data(), wanted, &count, nullptr)) raise(GetLastError());
      bytes.remove_prefix(count);
    }
  }

  void close() {
    if (!handle_.close()) raise(GetLastError());
  }

 private:
  // A name with a null character in it would open the file of the name up to there.
  Handle open(DWORD access, DWORD sharing) const {
    if (path_.find(u'\0') != std::u16string::npos) raise(ERROR_INVALID_NAME);
    return {path_, access, sharing, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN};
  }
  // A folder is refused as if rights were missing.
  DWORD opening_error() const {
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(wide(path_));
    const bool folder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return folder ? ERROR_DIRECTORY : error;
  }
  [[noreturn]] void raise(DWORD error) const { raise_file_error(error, verb_, path_); }

  std::u16string path_;
  const char* verb_;
  Handle handle_;
};

class SystemBinaryFile : public BinaryFile {
 public:
  explicit SystemBinaryFile(const std::u16string& path)
      : file_(path, "read", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE) {}
  std::uint64_t Size() override { return file_.size(); }
  std::size_t Read(std::span<unsigned char> into) override { return file_.read(into); }
  bool SkipTo(std::uint64_t offset) override { return file_.seek(offset); }
  void Close() override { file_.close(); }

 private:
  OpenFile file_;
};

class SystemBinaryOutput : public BinaryOutput {
 public:
  explicit SystemBinaryOutput(const std::u16string& path) : file_(path, "write", GENERIC_WRITE, FILE_SHARE_READ) {}
  void Write(std::string_view bytes) override { file_.write(bytes); }
  void Close() override { file_.close(); }

 private:
  OpenFile file_;
};

// False where no file of that name can be looked at.
bool identity_of(const std::u16string& path, BY_HANDLE_FILE_INFORMATION& identity) {
  const Handle file(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS);
  return file.is_open() && GetFileInformationByHandle(file.get(), &identity);
}

}  // namespace

std::unique_ptr<FileSystemObject> SystemFiles::CreateFileSystemObject() { return create_scripting_files(); }

std::unique_ptr<BinaryFile> SystemFiles::OpenBinary(const std::u16string& path) {
  return std::make_unique<SystemBinaryFile>(path);
}

std::unique_ptr<BinaryOutput> SystemFiles::OpenBinaryOutput(const std::u16string& path) {
  return std::make_unique<SystemBinaryOutput>(path);
}

bool is_held(const std::u16string& path) {
  const Handle file(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING,
                    FILE_ATTRIBUTE_NORMAL);
  return !file.is_open() && number_of_error(GetLastError()) == ErrorNumber::kFileHeld;
}

bool SystemFiles::SameFile(const std::u16string& path, const std::u16string& other) {
  BY_HANDLE_FILE_INFORMATION one, two;
  return identity_of(path, one) && identity_of(other, two) && one.dwVolumeSerialNumber == two.dwVolumeSerialNumber &&
         one.nFileIndexHigh == two.nFileIndexHigh && one.nFileIndexLow == two.nFileIndexLow;
}

}  // namespace trvtrout::windows
