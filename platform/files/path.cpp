#include "platform/files/path.h"

#include <algorithm>
#include <random>

#include "text/utf8.h"

namespace trvtrout::platform {
namespace {

constexpr std::string_view kTemporaryBegin = ".vtrout-", kTemporaryEnd = ".tmp";

}  // namespace

std::string machine_path(const std::u16string& path) {
  std::string bytes = text::to_utf8(path);
  std::replace(bytes.begin(), bytes.end(), '\\', '/');
  return bytes;
}

std::u16string class_path(std::string_view machine_path) {
  std::u16string path = text::from_utf8(machine_path);
  std::replace(path.begin(), path.end(), u'/', u'\\');
  return path;
}

std::string temporary_path_beside(const std::string& machine_path) {
  std::random_device random;
  return machine_path.substr(0, machine_path.rfind('/') + 1) + std::string(kTemporaryBegin) + std::to_string(random()) +
         std::string(kTemporaryEnd);
}

bool is_temporary_name(std::string_view name) {
  return name.starts_with(kTemporaryBegin) && name.ends_with(kTemporaryEnd);
}

}  // namespace trvtrout::platform
