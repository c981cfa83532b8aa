#pragma once

#include <cstdint>
#include <string>

namespace trvtrout::host {

// "1 file", "2 files".
inline std::string counted(std::uint64_t count, const std::string& what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

}  // namespace trvtrout::host
