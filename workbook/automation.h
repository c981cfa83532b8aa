#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

// The members of a spreadsheet's automation interface that the workbook operations call, and no others. Optional
// arguments that the operations leave out aren't here, nor is the locale argument of the members that have one: an
// adapter passes them as missing, and 1033.
//
// Objects are released by destroying them; one that outlives its application is good for nothing else. Every member
// raises ServiceError (services/host_services.h) when the spreadsheet fails.
namespace trvtrout::automation {

class Font {
 public:
  virtual ~Font() = default;
  // An index into the workbook's palette, counted from 1. Dispatch id 97.
  virtual void SetColorIndex(std::int16_t index) = 0;
  // Dispatch id 96.
  virtual void SetBold(bool bold) = 0;
};

class Range {
 public:
  virtual ~Range() = default;
  // The default member, dispatch id 0: of all columns those from one letter to another ("B:F") or one column ("N").
  virtual std::unique_ptr<Range> Item(const std::u16string& columns) = 0;
  // Dispatch id 238.
  virtual std::unique_ptr<Range> Cells() = 0;
  // To the clipboard. Dispatch id 551.
  virtual void Copy() = 0;
  // Dispatch id 193.
  virtual void SetNumberFormat(const std::u16string& format) = 0;
  // Dispatch id 136.
  virtual void SetHorizontalAlignment(std::int32_t alignment) = 0;
  // Dispatch id 235.
  virtual void Select() = 0;
  // The text of a cell that holds a text, nothing for any other. Dispatch id 6.
  virtual std::optional<std::u16string> Value() = 0;
  // Dispatch id 146.
  virtual std::unique_ptr<Font> GetFont() = 0;
  // Dispatch id 793.
  virtual void AutoFilter() = 0;
};

// Left, of the alignments that a range can have.
inline constexpr std::int32_t kAlignLeft = -4131;

class Worksheet {
 public:
  virtual ~Worksheet() = default;
  virtual void SetName(const std::u16string& name) = 0;
  virtual std::unique_ptr<Range> Cells() = 0;
  virtual std::unique_ptr<Range> Columns() = 0;
  // Cells by their addresses, with commas between them ("B2", "A12,A14"), or a whole column ("A:A").
  virtual std::unique_ptr<Range> GetRange(const std::u16string& addresses) = 0;
  // From the clipboard, at the selection.
  virtual void Paste() = 0;
};

class Sheets {
 public:
  virtual ~Sheets() = default;
  // A new sheet in front of the active one; it becomes the active one.
  virtual void Add() = 0;
};

class Workbook {
 public:
  virtual ~Workbook() = default;
  virtual std::unique_ptr<Worksheet> ActiveSheet() = 0;
  virtual std::unique_ptr<Sheets> GetSheets() = 0;
  virtual void SaveAs(const std::u16string& filename, std::int32_t access_mode) = 0;
  virtual void Close() = 0;
};

class Workbooks {
 public:
  virtual ~Workbooks() = default;
  // The opened workbook becomes the active one.
  virtual void Open(const std::u16string& filename) = 0;
  // Closes what is open.
  virtual void Close() = 0;
};

class Application {
 public:
  // Releases the application; what wasn't saved is lost.
  virtual ~Application() = default;
  virtual void SetDisplayAlerts(bool alerts) = 0;
  virtual std::unique_ptr<Workbooks> GetWorkbooks() = 0;
  virtual std::unique_ptr<Workbook> ActiveWorkbook() = 0;
  virtual void Quit() = 0;
};

class Spreadsheet {
 public:
  virtual ~Spreadsheet() = default;
  // A new application by its name.
  virtual std::unique_ptr<Application> CreateObject(const std::u16string& name) = 0;
};

}  // namespace trvtrout::automation
