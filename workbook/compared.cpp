#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "workbook/label_colors.h"
#include "workbook/workbook_operations.h"

namespace trvtrout {
namespace {

// What one of the eight comparisons has of its own on its sheet.
struct ComparedSheet {
  std::u16string_view name;
  std::u16string_view moment_cells[2];
  std::u16string_view digits_column;
  std::vector<SizedList> lists;
  std::int64_t base;       // rows between the first item row and the last but those of items
  std::int64_t first_row;  // of the items, counted from 1
};

const ComparedSheet kSheets[] = {
    {u"Product", {u"D7", u"I7"}, {}, {SizedList::kIncludeFiles, SizedList::kModules}, 6, 28},
    {u"Tree", {}, u"G", {SizedList::kTree}, 0, 12},
    {u"Tables", {}, {}, {SizedList::kTables}, 0, 12},
    {u"Fields", {}, u"O", {SizedList::kFields}, 0, 8},
    {u"Lookups", {}, {}, {SizedList::kLookups}, 0, 12},
    {u"Control Tags", {}, {}, {SizedList::kControlTags}, 0, 10},
    {u"Languages", {}, {}, {SizedList::kLanguages}, 0, 10},
    {u"Data Send", {}, {}, {SizedList::kDataSend}, 4, 12},
};

void format_own_cells(automation::Worksheet& sheet, const ComparedSheet& own) {
  for (const std::u16string_view cell : own.moment_cells) {
    if (!cell.empty()) sheet.GetRange(std::u16string(cell))->SetNumberFormat(kMomentFormat);
  }
  if (!own.digits_column.empty()) format_columns(sheet, std::u16string(own.digits_column), kDigitsFormat);
}

// How many rows the items take at the most: a record that is alike on both sides counts twice and takes one.
std::int64_t row_estimate(const ComparedSheet& own, const ListSize& list_size) {
  std::int64_t rows = own.base;
  for (const SizedList list : own.lists) {
    rows += list_size(list, false);
    rows += list_size(list, true);
  }
  return rows;
}

}  // namespace

std::optional<Failure> output_compared(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                       const ListSize& list_size) {
  return move_report(spreadsheet, move, [&](automation::Worksheet& sheet) {
    format_columns(sheet, u"C:D", kDigitsFormat);
    align_left(sheet);
    sheet.GetRange(u"C3")->SetNumberFormat(kMomentFormat);
    const auto* own = std::ranges::find(kSheets, std::u16string_view(move.sheet_name), &ComparedSheet::name);
    if (own != std::end(kSheets)) {
      format_own_cells(sheet, *own);
      if (list_size) color_labels(sheet, own->first_row, own->first_row + row_estimate(*own, list_size));
    }
    sheet.GetRange(u"A1")->Select();
    sheet.GetRange(u"A:A")->AutoFilter();
  });
}

}  // namespace trvtrout
