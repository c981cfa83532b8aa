#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace trvtrout::spreadsheet {

// The number that both workbook formats reserve for a number format; nothing for one that a workbook has to define.
std::optional<std::uint16_t> reserved_number_format(std::string_view format);

}  // namespace trvtrout::spreadsheet
