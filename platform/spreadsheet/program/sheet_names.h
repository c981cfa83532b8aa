#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::spreadsheet {

// Whether two sheets (UTF-8) couldn't stand in one workbook: case doesn't count.
bool same_sheet_name(std::string_view one, std::string_view other);

// Raises WorkbookError unless a sheet can be given this name in a workbook that has sheets with the others (UTF-8).
void require_sheet_name(const std::u16string& name, const std::vector<std::string>& others);

}  // namespace trvtrout::spreadsheet
