#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/biff8/drawing.h"
#include "spreadsheet/biff8/sheet_stream.h"

namespace trvtrout::spreadsheet::biff8 {

// A sheet whose content is to be exchanged.
struct OldSheet {
  SheetFrame frame;                                                // what stays
  std::size_t size = 0;                                            // in the stream
  std::optional<Drawing> drawing;                                  // of its drawing layer
  std::map<std::uint32_t, std::uint32_t> texts;                    // how many cells show which text of the table
  std::vector<std::pair<std::uint32_t, std::uint32_t>> first_row;  // its columns with texts, and the texts' numbers
  std::string lost;                                                // what it has that would be lost; empty for nothing
};

// Reads the substream at `begin`. Raises WorkbookError where it's damaged.
OldSheet read_old_sheet(std::string_view stream, std::size_t begin);

}  // namespace trvtrout::spreadsheet::biff8
