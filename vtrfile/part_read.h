#pragma once

#include <cstdint>
#include <string_view>

namespace trvtrout::vtrfile {

// One part of a file as a read met it: the header, a section with its tag in front, the end tag.
struct PartRead {
  static constexpr std::string_view kHeader = "Header";

  std::string_view name;  // the tag; kHeader for the header
  // Bytes from the begin of the file. The records begin at `content`; the last of them, which remains, at `record`.
  std::uint64_t begin = 0, content = 0, record = 0, end = 0;
  int records = 0;
  bool whole = true;         // false: the end of the file or damage broke it off
  bool carried_over = true;  // false: it holds more than the upgrade from the old format takes over
};

}  // namespace trvtrout::vtrfile
