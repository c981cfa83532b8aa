#pragma once

#include <string>
#include <string_view>

#include "platform/files/file_handle.h"

namespace trvtrout::platform {

// The coming content of a file. Until commit() it stands beside the file under a name of its own, and the file is as
// it was; destroying it without commit() leaves nothing behind.
class Replacement {
 public:
  // `path`: of a file that exists or not; a link is followed. Raises ServiceError.
  explicit Replacement(const std::string& path);
  ~Replacement();
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  // Where the content stands until commit().
  const std::string& temporary_path() const { return temporary_path_; }
  // Appends. Raises ServiceError.
  void write(std::string_view bytes);
  // Puts it, safe on the disk and with the rights of the file that stood there, in the file's place. Raises
  // ServiceError.
  void commit();

 private:
  std::string path_;
  std::string temporary_path_;
  FileHandle file_;
};

}  // namespace trvtrout::platform
