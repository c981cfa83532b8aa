#pragma once

#include <memory>
#include <set>
#include <string>

#include "platform/files/staged_files.h"
#include "services/host_services.h"

namespace trvtrout::platform {

// What became of a text that was created.
enum class Placed {
  kNothing,   // none was created, or it was put already
  kText,      // it stands in its place
  kOldStays,  // it was given up, and the file that stood there is as it was
};

// Files of which the texts aren't written in place: the one created last stands beside its place until place() puts it
// there. A file that stands there is held meanwhile, and is replaced only after FileExists has told of it: nobody can
// have been asked about one that came later. All else goes to the files behind.
class ReportFiles : public Files {
 public:
  // `files` must outlive it.
  explicit ReportFiles(Files& files) : files_(files) {}

  std::unique_ptr<FileSystemObject> CreateFileSystemObject() override;
  std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) override { return files_.OpenBinary(path); }
  std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) override {
    return files_.OpenBinaryOutput(path);
  }
  bool SameFile(const std::u16string& path, const std::u16string& other) override {
    return files_.SameFile(path, other);
  }

  // The next FileExists with this path is False, whatever stands there: nothing will be written for that answer.
  void pass_over(const std::u16string& path) { passed_over_ = path; }
  // Puts the text in its place. One that isn't `whole` is put only where nothing stood. Raises ServiceError.
  Placed place(bool whole);
  // Nothing comes of the text created last; what stood there is as it was.
  void give_up() { staged_.reset(); }

 private:
  class FileSystem;

  Files& files_;
  std::u16string passed_over_;
  std::set<std::u16string> told_of_;
  std::unique_ptr<StagedFiles> staged_;
  bool replaces_ = false;
};

}  // namespace trvtrout::platform
