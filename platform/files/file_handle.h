#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "services/host_services.h"

namespace trvtrout::platform {

enum class Access { kRead, kWrite, kUpdate };  // kUpdate: both
enum class Creation { kNever, kIfMissing, kOnlyNew };

// A regular file of the machine, locked against other programs while it is open. `verb` is what a message says
// couldn't be done with the file.
class FileHandle {
 public:
  // Changes nothing in a file that exists. Messages name it `told_as`, if that isn't empty. Raises ServiceError.
  FileHandle(const std::string& path, const char* verb, Access access, Creation creation,
             const std::string& told_as = {});
  ~FileHandle() { close(); }
  FileHandle(FileHandle&& other) noexcept;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;

  // What messages name it.
  const std::string& told_as() const { return path_; }
  // Length in bytes. Raises ServiceError.
  std::uint64_t size() const;
  // Returns fewer bytes than asked at the end of the file, or in front of what can't be read, for which the next call
  // raises ServiceError.
  std::size_t read(std::span<unsigned char> into) const;
  // The next read begins at this byte. Raises ServiceError.
  void seek(std::uint64_t offset) const;
  void rewind() const { seek(0); }
  // The bytes from here to the end. Raises ServiceError.
  std::string read_rest() const;
  // What the machine tells of the file. Raises ServiceError.
  struct stat status() const;
  // Raises ServiceError.
  void truncate() const;
  // The error number of the machine, 0 for none; after an error some of the bytes may have been written.
  int write(std::string_view bytes) const noexcept;
  // What was written is on the disk when this returns. Raises ServiceError.
  void sync() const;
  // Gives the file the owner, where that's allowed, and the rights of the file at `path`, if there is one.
  void take_rights_of(const std::string& path) const;
  // The error number of the machine, 0 for none; closing again does nothing.
  int close() noexcept;

  // Raises the ServiceError for an error number of the machine.
  [[noreturn]] void raise(int error) const;

 private:
  std::string path_;
  const char* verb_;
  int descriptor_ = -1;
};

// Another program has locked the file.
class FileLocked : public ServiceError {
 public:
  using ServiceError::ServiceError;
};

// Raises the ServiceError that says: can't `verb` "`path`": `reason`.
[[noreturn]] void refuse_file(ErrorNumber number, const char* verb, const std::string& path, const std::string& reason);
// The same for an error number of the machine.
[[noreturn]] void raise_file_error(int error, const std::string& path, const char* verb);

}  // namespace trvtrout::platform
