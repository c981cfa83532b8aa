#pragma once

#include <string>
#include <string_view>

namespace trvtrout::platform {

// The path that the machine knows: UTF-8, "/" for each backslash.
std::string machine_path(const std::u16string& path);

// The path that the class is given: a backslash for each "/". Bytes of a name that aren't UTF-8 come back through
// machine_path.
std::u16string class_path(std::string_view machine_path);

// A path beside a file of the machine that no other file has. The name is short: the file's may be as long as can be.
std::string temporary_path_beside(const std::string& machine_path);

}  // namespace trvtrout::platform
