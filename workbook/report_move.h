#pragma once

#include <functional>
#include <optional>
#include <string>

#include "services/guard.h"
#include "workbook/automation.h"

namespace trvtrout {

// A report that is to become a sheet of a workbook.
struct ReportMove {
  const std::u16string& workbook;    // path of a workbook that exists
  const std::u16string& report;      // path of a comma-separated text
  const std::u16string& sheet_name;  // of the new sheet
};

// Columns ("B:F", "N") show whole digits, a cell shows date and time. An empty address stands for none.
void format_digits(automation::Worksheet& sheet, std::u16string_view columns);
void format_moment(automation::Worksheet& sheet, std::u16string_view cell);
// Aligns all columns to the left.
void align_left(automation::Worksheet& sheet);

// Loads the report into a new application, pastes it into a new sheet of the workbook, calls format(sheet), and saves
// the workbook under its own name. Returns nothing, or the failure: what wasn't saved is lost then, and the application
// has quit. Neither raises nor tells the user.
std::optional<Failure> move_report(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                   const std::function<void(automation::Worksheet&)>& format);

}  // namespace trvtrout
