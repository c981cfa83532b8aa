#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/opc/package.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::ooxml {

// What stands around a sheet's cells, their columns and their filter, as XML.
struct SheetFrame {
  std::string head;   // with the start of the root
  std::string views;  // how windows show the sheet
  std::string tail;   // behind the filter, with the end of the root
};

// Of a new sheet in the namespace `space`, selected in each of the workbook's `views`.
SheetFrame new_frame(std::string_view space, std::size_t views);

// The part of a sheet. `formats` are the numbers that the workbook has for the sheet's styles. The sheet must outlive
// the stream.
std::unique_ptr<PartStream> sheet_stream(const Sheet& sheet, std::vector<std::uint32_t> formats, SheetFrame frame);

}  // namespace trvtrout::spreadsheet::ooxml
