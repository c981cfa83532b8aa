#include "platform/files/file_handle.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "services/host_services.h"

namespace trvtrout::platform {
namespace {

// Beside the machine's own: the file isn't there, and its folder keeps it from being made or seen.
constexpr int kFolderRefuses = -1;

struct ErrorRow {
  int error;
  ErrorNumber number;
  const char* reason;  // null: the machine's own words
};

constexpr ErrorRow kErrors[] = {
    {ENOENT, ErrorNumber::kNoSuchFile, "there is no such file"},
    {ENOTDIR, ErrorNumber::kNoSuchFolder, "its folder doesn't exist"},
    {EAGAIN, ErrorNumber::kFileHeld, "it's in use by another program"},
    {EACCES, ErrorNumber::kFileHeld, nullptr},
    {EPERM, ErrorNumber::kFileHeld, nullptr},
    {kFolderRefuses, ErrorNumber::kPathAccess, "the rights to its folder are missing"},
    {EROFS, ErrorNumber::kPathAccess, "its file system can't be written"},
    {ETXTBSY, ErrorNumber::kFileHeld, "it's a program that is running"},
    {EBUSY, ErrorNumber::kFileHeld, nullptr},
    {EISDIR, ErrorNumber::kFileExists, "a folder has that name"},
    {EEXIST, ErrorNumber::kFileExists, "a file with that name exists"},
    {ENXIO, ErrorNumber::kPathAccess, "it's a folder, a pipe or a device"},
    {ENOSPC, ErrorNumber::kDiskFull, "the disk is full"},
    {EDQUOT, ErrorNumber::kDiskFull, "the disk quota is used up"},
    {EFBIG, ErrorNumber::kDiskFull, "the file would be larger than allowed"},
    {EMFILE, ErrorNumber::kTooManyFiles, nullptr},
    {ENFILE, ErrorNumber::kTooManyFiles, nullptr},
    {ENAMETOOLONG, ErrorNumber::kBadFileName, nullptr},
    {EILSEQ, ErrorNumber::kBadFileName, "that can't be a file name"},
};

bool parent_exists(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string parent = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  struct stat status {};
  return stat(parent.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// O_NONBLOCK: opening a pipe must not wait for the other end.
int open_once(const std::string& path, int flags) {
  for (;;) {
    const int descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
    if (descriptor >= 0 || errno != EINTR) return descriptor;
  }
}

int open_descriptor(const std::string& path, Access access, Creation creation) {
  const int flags = access == Access::kRead ? O_RDONLY : access == Access::kWrite ? O_WRONLY : O_RDWR;
  if (creation == Creation::kOnlyNew) return open_once(path, flags | O_CREAT | O_EXCL);
  // Creating only in a second step: with O_CREAT the system refuses another user's file in a shared sticky folder
  // even to those who may open it.
  const int descriptor = open_once(path, flags);
  if (descriptor >= 0 || errno != ENOENT || creation == Creation::kNever) return descriptor;
  return open_once(path, flags | O_CREAT);
}

int regular_file_error(int descriptor) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return errno;
  return S_ISREG(status.st_mode) ? 0 : ENXIO;
}

int lock_error() {
  const bool held = errno == EAGAIN || errno == EACCES;
  const bool no_locks_here = errno == ENOLCK || errno == EOPNOTSUPP || errno == EINVAL;
  return held ? EAGAIN : no_locks_here ? 0 : errno;
}

int opening_error(int error, const std::string& path) {
  struct stat status {};
  const bool refused = error == EACCES || error == EPERM;
  return refused && lstat(path.c_str(), &status) != 0 ? kFolderRefuses : error;
}

// The two kinds of lock don't see each other, and programs use either.
int lock(int descriptor, Access access) {
  const bool reading = access == Access::kRead;
  if (flock(descriptor, (reading ? LOCK_SH : LOCK_EX) | LOCK_NB) != 0) {
    if (const int error = lock_error(); error != 0) return error;
  }
  struct flock whole_file {};
  whole_file.l_type = reading ? F_RDLCK : F_WRLCK;
  whole_file.l_whence = SEEK_SET;
  return fcntl(descriptor, F_OFD_SETLK, &whole_file) == 0 ? 0 : lock_error();
}

std::string file_text(const char* verb, const std::string& path, const std::string& reason) {
  return std::string("can't ") + verb + " \"" + path + "\": " + reason;
}

}  // namespace

void refuse_file(ErrorNumber number, const char* verb, const std::string& path, const std::string& reason) {
  throw ServiceError(number, file_text(verb, path, reason));
}

void raise_file_error(int error, const std::string& path, const char* verb) {
  if (error == ENOENT && !parent_exists(path)) error = ENOTDIR;
  const auto* row = std::find_if(std::begin(kErrors), std::end(kErrors),
                                 [error](const ErrorRow& candidate) { return candidate.error == error; });
  const bool found = row != std::end(kErrors);
  const std::string reason = found && row->reason ? row->reason : std::generic_category().message(error);
  if (error == EAGAIN) throw FileLocked(row->number, file_text(verb, path, reason));
  refuse_file(found ? row->number : ErrorNumber::kDeviceError, verb, path, reason);
}

FileHandle::FileHandle(const std::string& path, const char* verb, Access access, Creation creation,
                       const std::string& told_as)
    : path_(told_as.empty() ? path : told_as), verb_(verb) {
  if (path.find('\0') != std::string::npos) raise(EILSEQ);
  descriptor_ = open_descriptor(path, access, creation);
  if (descriptor_ < 0) raise(opening_error(errno, path));
  int error = regular_file_error(descriptor_);
  if (error == 0) error = lock(descriptor_, access);
  if (error == 0) return;
  close();
  raise(error);
}

FileHandle::FileHandle(FileHandle&& other) noexcept
    : path_(std::move(other.path_)), verb_(other.verb_), descriptor_(std::exchange(other.descriptor_, -1)) {}

struct stat FileHandle::status() const {
  struct stat status {};
  if (fstat(descriptor_, &status) != 0) raise(errno);
  return status;
}

std::uint64_t FileHandle::size() const { return static_cast<std::uint64_t>(status().st_size); }

void FileHandle::seek(std::uint64_t offset) const {
  if (lseek(descriptor_, static_cast<off_t>(offset), SEEK_SET) < 0) raise(errno);
}

std::string FileHandle::read_rest() const {
  std::string bytes(size(), '\0');
  const std::span whole(reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
  std::size_t filled = 0;
  while (const std::size_t count = read(whole.subspan(filled))) filled += count;
  bytes.resize(filled);
  return bytes;
}

std::size_t FileHandle::read(std::span<unsigned char> into) const {
  std::size_t filled = 0;
  while (filled < into.size()) {
    const ssize_t count = ::read(descriptor_, into.data() + filled, into.size() - filled);
    if (count == 0) break;
    if (count > 0) {
      filled += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      if (filled > 0) break;  // what came counts; the next call tells
      raise(errno);
    }
  }
  return filled;
}

void FileHandle::truncate() const {
  if (ftruncate(descriptor_, 0) != 0) raise(errno);
}

int FileHandle::write(std::string_view bytes) const noexcept {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

void FileHandle::sync() const {
  if (fsync(descriptor_) != 0) raise(errno);
}

void FileHandle::take_rights_of(const std::string& path) const {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return;
  // The owner first: changing it drops rights. Another user's file may not be given away; then the group alone.
  const bool given = fchown(descriptor_, status.st_uid, status.st_gid) == 0 ||
                     fchown(descriptor_, static_cast<uid_t>(-1), status.st_gid) == 0;
  // Rights of a group that the file doesn't belong to would go to strangers.
  const mode_t rights = given ? status.st_mode & 07777U : status.st_mode & 0707U;
  if (fchmod(descriptor_, rights) != 0) raise(errno);
}

int FileHandle::close() noexcept {
  const int descriptor = std::exchange(descriptor_, -1);
  // An interrupted close has closed.
  return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

void FileHandle::raise(int error) const { raise_file_error(error, path_, verb_); }

}  // namespace trvtrout::platform
