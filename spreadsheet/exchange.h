#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "spreadsheet/workbook_file.h"

// What both formats say of a sheet whose content is to be exchanged.
namespace trvtrout::spreadsheet {

inline bool has_mark(std::span<const SheetMark> marks, std::uint32_t column, std::string_view text) {
  return std::ranges::any_of(
      marks, [&](const SheetMark& mark) { return mark.column == column && text.starts_with(mark.begin); });
}

[[noreturn]] inline void raise_not_exchanged(const std::string& sheet, const std::string& because) {
  throw WorkbookError("its sheet \"" + sheet + "\" can't be exchanged: " + because);
}

[[noreturn]] inline void raise_foreign(const std::string& sheet) {
  raise_not_exchanged(sheet, "its first row doesn't say that it was made by the same program; rename or remove it");
}

// `what`: in the plural.
[[noreturn]] inline void raise_would_be_lost(const std::string& sheet, std::string_view what) {
  raise_not_exchanged(
      sheet, "it has " + std::string(what) + ", which would be lost; move them to another sheet, or rename this one");
}

}  // namespace trvtrout::spreadsheet
