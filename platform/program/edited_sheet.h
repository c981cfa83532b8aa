#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/program/areas.h"
#include "services/host_services.h"
#include "spreadsheet/sheet.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::platform {

// Raises WorkbookError, with the place, for a sheet that is larger than `limits` or has a cell of too long a text.
void require_fitting(const spreadsheet::Sheet& sheet, spreadsheet::SheetLimits limits);

// Counts the dates of a sheet from 1904; one that is earlier becomes the text that `locale` makes of it.
void count_dates_from_1904(spreadsheet::Sheet& sheet, Locale& locale);

// A sheet whose cells and columns are being formatted.
class EditedSheet {
 public:
  // The cells fit the limits; columns have the plain style.
  EditedSheet(spreadsheet::Sheet sheet, spreadsheet::SheetLimits limits);

  // Changes the style of every cell in the areas, also of cells that aren't there. Raises WorkbookError for an area
  // that isn't within the limits.
  void restyle(const std::vector<Area>& areas, const std::function<void(spreadsheet::CellStyle&)>& change);
  // The text of a cell that holds one; views into the sheet.
  std::optional<std::string_view> text_at(std::uint32_t row, std::uint32_t column) const;
  void add_filter() { sheet_.has_filter = true; }
  // All columns.
  Area columns() const { return {0, kWholeColumn, 0, limits_.columns - 1}; }

  // The sheet with its columns as wide as their cells need, within reason. To be called once, at the end.
  spreadsheet::Sheet finish(std::string name);
  // The sheet as it is. To be called once, at the end.
  spreadsheet::Sheet take() { return std::move(sheet_); }

 private:
  class Change;

  void restyle_columns(const Area& area, Change& change);
  void restyle_cells(const Area& area, Change& change);
  void drop_unused_styles();
  spreadsheet::Cell& cell_at(std::uint32_t row, std::uint32_t column);

  spreadsheet::Sheet sheet_;
  spreadsheet::SheetLimits limits_;
  std::vector<std::uint16_t> column_styles_;  // of all columns of the format
};

}  // namespace trvtrout::platform
