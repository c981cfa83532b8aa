#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::platform {

// What two sheets of one workbook may not have in common: the name (UTF-8) but for upper and lower case.
std::u16string without_case(std::string_view name);

// Which of the sheets `names` has this name; nothing for none.
std::optional<std::size_t> sheet_named(std::string_view name, const std::vector<std::string>& names);

// Raises WorkbookError unless a sheet can be given this name in a workbook that has sheets with the others (UTF-8).
void require_sheet_name(const std::u16string& name, const std::vector<std::string>& others);

}  // namespace trvtrout::platform
