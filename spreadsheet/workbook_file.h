#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet {

// Why a workbook can't be opened or changed, in words that follow the file's name and a colon: what, where in the file
// if that helps, and what to do. The workbook is as it was.
class WorkbookError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the sheets of one maker have in their first row: a text in this column, counted from 0, that begins like this.
struct SheetMark {
  std::uint32_t column;
  std::string begin;
};

// A workbook that somebody made, held as its bytes. Nothing in it changes but what a new sheet needs.
class WorkbookFile {
 public:
  virtual ~WorkbookFile() = default;
  // UTF-8, from left to right, hidden sheets and chart sheets too. A workbook that was just made has none.
  virtual const std::vector<std::string>& sheet_names() const = 0;
  virtual bool counts_from_1904() const = 0;
  virtual SheetLimits limits() const = 0;
  // The bytes of the workbook with `sheet` in front of the active sheet; the new one is active and the only one that is
  // selected, with the cursor in A1. The sheet is within the limits. Raises WorkbookError.
  virtual std::string with_sheet(const Sheet& sheet) const = 0;
  // The bytes of the workbook with the content of `sheet` (cells, formats, column widths, filter) in the place of that
  // of the sheet at `position`, which stays what it is for all that refers to it: its name, its place, how it's viewed
  // and printed. Formulas are worked out anew when a program opens the workbook. Raises WorkbookError, also for a sheet
  // that has none of `marks`, and for one that has more than such a sheet can have, which would be lost.
  virtual std::string with_content(std::size_t position, const Sheet& sheet,
                                   std::span<const SheetMark> marks) const = 0;
  // Raises WorkbookError if with_content would refuse the sheet at `position`, whatever its new content.
  virtual void require_exchangeable(std::size_t position, std::span<const SheetMark> marks) const = 0;
};

// By the content: BIFF8 in OLE2, or OOXML. Raises WorkbookError with the reason for anything else, and for a workbook
// that can't be changed without harm.
std::unique_ptr<WorkbookFile> open_workbook(std::string bytes);

enum class WorkbookFormat { kBiff8, kOoxml };
// A workbook without a sheet, to be given its first one by with_sheet; no program opens it as it is.
std::string empty_workbook(WorkbookFormat format);

}  // namespace trvtrout::spreadsheet
