#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::spreadsheet::ooxml {

// The zip file `old` with the entries of the zip file `added`: each in the place of the entry of `old` whose number
// `replaced` has for it, or else behind the others. All else stays byte for byte, but for where the directory says that
// entries stand. Raises WorkbookError.
std::string spliced(std::string_view old, std::string_view added,
                    const std::vector<std::optional<std::size_t>>& replaced);

}  // namespace trvtrout::spreadsheet::ooxml
