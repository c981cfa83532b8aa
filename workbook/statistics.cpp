#include "workbook/workbook_operations.h"

namespace trvtrout {

std::optional<Failure> output_statistics(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                         const PartSheet* own) {
  return move_report(spreadsheet, move, [&](automation::Worksheet& sheet) {
    format_digits(sheet, u"B:F");
    if (own) format_digits(sheet, own->report_digits);
    align_left(sheet);
    format_moment(sheet, u"B2");
    if (own) format_moment(sheet, own->report_moment);
    sheet.GetRange(u"A1")->Select();
  });
}

}  // namespace trvtrout
