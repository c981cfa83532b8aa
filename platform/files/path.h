#pragma once

#include <string>
#include <string_view>

namespace trvtrout::platform {

// The path that the machine knows: UTF-8, "/" for each backslash.
std::string machine_path(const std::u16string& path);

// The path that the class is given: a backslash for each "/". Bytes of a name that aren't UTF-8 come back through
// machine_path.
std::u16string class_path(std::string_view machine_path);

// Whether class_path() can spell a path: the class has backslashes between the names of a path, so no name can have
// one.
inline bool has_class_path(std::string_view machine_path) { return machine_path.find('\\') == std::string_view::npos; }
inline constexpr const char* kNoClassPath = "a path can't contain a backslash; rename the file or its folder";

// A path beside a file of the machine that no other file has. The name is short: the file's may be as long as can be.
std::string temporary_path_beside(const std::string& machine_path);
// Whether a file of this name, without folders, is such a one.
bool is_temporary_name(std::string_view name);

}  // namespace trvtrout::platform
