#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files/file_handle.h"
#include "platform/files/unfinished.h"

namespace trvtrout::platform {

// The coming content of a file. Until commit() it stands beside the file under a name of its own, and the file is as
// it was; destroying it without commit() leaves nothing behind.
class Replacement {
 public:
  // `path`: of a file that exists or not. A link is followed; one that leads nowhere is refused. A file that doesn't
  // exist will have the rights of the one at `model`. Messages name it `told_as`, if that isn't empty. Raises
  // ServiceError.
  explicit Replacement(const std::string& path, std::string model = {}, const std::string& told_as = {});
  ~Replacement();
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  // Where the content stands until commit().
  const std::string& temporary_path() const { return temporary_path_; }
  // Appends. Raises ServiceError.
  void write(std::string_view bytes);
  // From now on nobody waits until the content is on the disk. For one that can be made anew at any time and takes
  // nothing's place: of many small files the waiting takes most of the time.
  void need_not_be_safe() { waits_for_disk_ = false; }
  // Ends the writing: the content is safe on the disk, with the rights of the file in whose place it will come, and can
  // be read at temporary_path(). Raises ServiceError.
  void finish();
  // Puts it, finished, in the file's place. Raises ServiceError.
  void commit();
  // The same, but raises ServiceError when anything stands there.
  void commit_new();

 private:
  void settle();

  std::string path_;
  std::string told_as_;
  std::string model_;
  std::string temporary_path_;
  std::optional<Unfinished> unfinished_;
  FileHandle file_;
  bool finished_ = false, waits_for_disk_ = true;
};

// The path of the file that links at `path` lead to; `path` itself when there is none. Raises ServiceError for a link
// that leads nowhere.
std::string behind_links(const std::string& path);

// Raises ServiceError unless new files can be made in the folder; tries it.
void require_writable_folder(const std::string& folder);

// Whether anything has this name, a link that leads nowhere too.
bool name_is_taken(const std::string& path);

}  // namespace trvtrout::platform
