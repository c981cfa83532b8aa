#pragma once

#include <span>
#include <string>

#include "spreadsheet/ooxml/sheet_part.h"
#include "spreadsheet/opc/package.h"
#include "spreadsheet/opc/relations.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {

// Where a sheet stands.
struct OldSheet {
  std::string name;   // that messages tell
  std::string part;   // empty if there's none
  std::string texts;  // the part of the texts that sheets share; empty if there's none
};

// What stays of a sheet whose content is exchanged. Raises WorkbookError for a sheet with none of `marks`, and for one
// that has what would be lost.
SheetFrame kept_frame(const Package& package, const Dialect& dialect, const OldSheet& sheet,
                      std::span<const SheetMark> marks);

}  // namespace trvtrout::spreadsheet::ooxml
