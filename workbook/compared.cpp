#include "workbook/label_colors.h"
#include "workbook/workbook_operations.h"

namespace trvtrout {

std::optional<Failure> output_compared(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                       const PartSheet* own, const CountRows& item_rows) {
  return move_report(spreadsheet, move, [&](automation::Worksheet& sheet) {
    format_digits(sheet, u"C:D");
    align_left(sheet);
    format_moment(sheet, u"C3");
    if (own) {
      for (const std::u16string_view cell : own->compared_moments) format_moment(sheet, cell);
      format_digits(sheet, own->compared_digits);
      if (item_rows) color_labels(sheet, own->first_item_row, own->first_item_row + own->rows_between + item_rows());
    }
    sheet.GetRange(u"A1")->Select();
    sheet.GetRange(u"A:A")->AutoFilter();
  });
}

}  // namespace trvtrout
