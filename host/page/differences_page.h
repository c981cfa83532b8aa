#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "differences/differences.h"

namespace trvtrout::host {

// A file that was compared, as the page tells of it.
struct PageFile {
  std::string name;  // as it was given
  std::uint64_t size = 0;
  std::string sha256;                     // in hex
  std::chrono::sys_seconds last_changed;  // of its content
};

// Reads the file at `path`, whole. Raises ServiceError when it can't be read.
PageFile page_file(const std::string& path);

struct PageInfo {
  std::chrono::sys_seconds compared;
  PageFile old_file, new_file;
  // For readers whose browser runs no scripts.
  std::array<std::size_t, differences::kKinds> of_kind = {};
  // The patterns that chose what was compared; none when all was.
  std::vector<std::string> only, ignored;
};

// Writes one HTML page that shows differences and needs nothing else: it fetches nothing, and its content security
// policy forbids it. `write_json` writes them in the form "vtr-differences", version 1, as UTF-8; it's called once, and
// what it writes goes straight on. Whether all could be written is the state of `page`.
void write_differences_page(std::ostream& page, const PageInfo& info,
                            const std::function<void(std::ostream&)>& write_json);

}  // namespace trvtrout::host
