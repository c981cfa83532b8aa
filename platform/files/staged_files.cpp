#include "platform/files/staged_files.h"

#include <filesystem>
#include <system_error>

#include "platform/files/path.h"

namespace trvtrout::platform {
namespace {

class StagedOutput : public BinaryOutput {
 public:
  explicit StagedOutput(Replacement& replacement) : replacement_(replacement) {}
  void Write(std::string_view bytes) override { replacement_.write(bytes); }
  void Close() override { replacement_.finish(); }

 private:
  Replacement& replacement_;
};

}  // namespace

std::unique_ptr<BinaryOutput> StagedFiles::OpenBinaryOutput(const std::u16string& path) {
  const std::string name = machine_path(path);
  std::error_code none;
  // The name alone could be given to another file even where the file itself is write-protected or held.
  if (std::filesystem::exists(name, none)) standing_.emplace(name, "write", Access::kWrite, Creation::kNever);
  return std::make_unique<StagedOutput>(replacement_.emplace(name, model_, name));
}

std::u16string StagedFiles::content_path() const { return class_path(replacement_->temporary_path()); }

}  // namespace trvtrout::platform
