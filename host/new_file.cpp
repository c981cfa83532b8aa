#include "host/new_file.h"

#include "host/machine.h"
#include "platform/files/path.h"
#include "reports/naming.h"

namespace trvtrout::host {

namespace {

// The path that the new file's name is made of.
std::u16string named_after(const NewFile& file) {
  const std::string& path = file.source;
  return platform::class_path(file.folder.empty() ? path : file.folder + '/' + path.substr(path.rfind('/') + 1));
}

}  // namespace

std::optional<Target> target_for(const HostServices& services, const NewFile& file) {
  const std::u16string source = platform::class_path(file.source);
  const auto is_source = [&](const std::u16string& path) {
    if (!services.files.SameFile(path, source)) return false;
    complain(platform::machine_path(path) + ": that's " + file.source_is +
             " itself, which is never overwritten; name another one" + kNothingWritten);
    return true;
  };
  const bool is_given = !file.given.empty();
  if (is_given && is_source(platform::class_path(file.given))) return {};
  const OutputName name =
      is_given ? ConfirmOutputFileName(services, source, file.desc_name, platform::class_path(file.given))
               : GetOutputFileName(services, named_after(file), file.desc_name);
  if (name.path.empty()) {
    complain(file.source + ": " +
             (name.failure.empty() ? "its name has no full stop, so no name can be made from it" : name.failure) +
             (is_given ? "" : file.option) + kNothingWritten);
    return {};
  }
  if (name.abandoned) {
    complain(platform::machine_path(name.path) + ": the existing file was left as it was" + kNothingWritten);
    return {};
  }
  if (is_source(name.path)) return {};
  const bool stands = services.files.CreateFileSystemObject()->FileExists(name.path);
  return Target{name.path, name.asked && stands};
}

}  // namespace trvtrout::host
