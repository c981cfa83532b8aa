#include "workbook/workbook_operations.h"

namespace trvtrout {

std::optional<Failure> output_statistics(automation::Spreadsheet& spreadsheet, const ReportMove& move) {
  return move_report(spreadsheet, move, [&](automation::Worksheet& sheet) {
    format_columns(sheet, u"B:F", kDigitsFormat);
    if (move.sheet_name == u"Fields") format_columns(sheet, u"N", kDigitsFormat);
    align_left(sheet);
    sheet.GetRange(u"B2")->SetNumberFormat(kMomentFormat);
    if (move.sheet_name == u"Product") sheet.GetRange(u"C6")->SetNumberFormat(kMomentFormat);
    sheet.GetRange(u"A1")->Select();
  });
}

}  // namespace trvtrout
