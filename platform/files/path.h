#pragma once

#include <string>
#include <string_view>

namespace trvtrout::platform {

// The path that the machine knows: UTF-8, "/" for each backslash.
std::string machine_path(const std::u16string& path);

// The path that the class is given: a backslash for each "/". Bytes of a name that aren't UTF-8 come back through
// machine_path.
std::u16string class_path(std::string_view machine_path);

}  // namespace trvtrout::platform
