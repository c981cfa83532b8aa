#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "spreadsheet/opc/package.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::ooxml {

// The part of a sheet, selected in each of the workbook's `views`. `formats` are the numbers that the workbook has for
// the sheet's styles. The sheet and `space`, the namespace, must outlive the stream.
std::unique_ptr<PartStream> sheet_stream(const Sheet& sheet, std::vector<std::uint32_t> formats, std::string_view space,
                                         std::size_t views);

}  // namespace trvtrout::spreadsheet::ooxml
