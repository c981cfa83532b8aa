#include "windows/spreadsheet_automation.h"

#include <utility>

#include "windows/dispatched.h"

namespace trvtrout::windows {
namespace {

constexpr DISPID kDefault = 0, kValue = 6, kBold = 96, kColorIndex = 97, kHorizontalAlignment = 136, kFont = 146,
                 kNumberFormat = 193, kSelect = 235, kCells = 238, kCopy = 551, kAutoFilter = 793;

class ExcelFont : public automation::Font {
 public:
  explicit ExcelFont(Dispatched font) : font_(std::move(font)) {}
  void SetColorIndex(std::int16_t index) override { font_.put(kColorIndex, index); }
  void SetBold(bool bold) override { font_.put(kBold, bold); }

 private:
  Dispatched font_;
};

class ExcelRange : public automation::Range {
 public:
  // `number_format`: how that member is reached.
  explicit ExcelRange(Dispatched range, Member number_format = kNumberFormat)
      : range_(std::move(range)), number_format_(number_format) {}

  // What the default member gives is an object of unknown type.
  std::unique_ptr<Range> Item(const std::u16string& columns) override {
    return std::make_unique<ExcelRange>(range_.object(kDefault, columns), L"NumberFormat");
  }
  std::unique_ptr<Range> Cells() override { return std::make_unique<ExcelRange>(range_.object(kCells)); }
  void Copy() override { range_.call(kCopy); }
  void SetNumberFormat(const std::u16string& format) override { range_.put(number_format_, format); }
  void SetHorizontalAlignment(std::int32_t alignment) override { range_.put(kHorizontalAlignment, alignment); }
  void Select() override { range_.call(kSelect); }
  std::optional<std::u16string> Value() override {
    const Variant value = range_.get(kValue);
    if (value.get().vt != VT_BSTR) return std::nullopt;
    return text_of(value.get().bstrVal);
  }
  std::unique_ptr<automation::Font> GetFont() override { return std::make_unique<ExcelFont>(range_.object(kFont)); }
  void AutoFilter() override { range_.call(kAutoFilter); }

 private:
  Dispatched range_;
  Member number_format_;
};

class ExcelWorksheet : public automation::Worksheet {
 public:
  explicit ExcelWorksheet(Dispatched sheet) : sheet_(std::move(sheet)) {}
  void SetName(const std::u16string& name) override { sheet_.put(L"Name", name); }
  std::unique_ptr<automation::Range> Cells() override { return range(sheet_.object(L"Cells")); }
  std::unique_ptr<automation::Range> Columns() override { return range(sheet_.object(L"Columns")); }
  std::unique_ptr<automation::Range> GetRange(const std::u16string& addresses) override {
    return range(sheet_.object(L"Range", addresses));
  }
  void Paste() override { sheet_.call(L"Paste"); }

 private:
  static std::unique_ptr<automation::Range> range(Dispatched object) {
    return std::make_unique<ExcelRange>(std::move(object));
  }

  Dispatched sheet_;
};

class ExcelSheets : public automation::Sheets {
 public:
  explicit ExcelSheets(Dispatched sheets) : sheets_(std::move(sheets)) {}
  void Add() override { sheets_.call(L"Add"); }

 private:
  Dispatched sheets_;
};

class ExcelWorkbook : public automation::Workbook {
 public:
  explicit ExcelWorkbook(Dispatched workbook) : workbook_(std::move(workbook)) {}
  std::unique_ptr<automation::Worksheet> ActiveSheet() override {
    return std::make_unique<ExcelWorksheet>(workbook_.object(L"ActiveSheet"));
  }
  std::unique_ptr<automation::Sheets> GetSheets() override {
    return std::make_unique<ExcelSheets>(workbook_.object(L"Sheets"));
  }
  // The access mode is the seventh argument.
  void SaveAs(const std::u16string& filename, std::int32_t access_mode) override {
    const auto missing = &Variant::missing;
    workbook_.call(L"SaveAs", filename, missing(), missing(), missing(), missing(), missing(), access_mode);
  }
  void Close() override { workbook_.call(L"Close"); }

 private:
  Dispatched workbook_;
};

class ExcelWorkbooks : public automation::Workbooks {
 public:
  explicit ExcelWorkbooks(Dispatched workbooks) : workbooks_(std::move(workbooks)) {}
  void Open(const std::u16string& filename) override { workbooks_.call(L"Open", filename); }
  void Close() override { workbooks_.call(L"Close"); }

 private:
  Dispatched workbooks_;
};

class ExcelApplication : public automation::Application {
 public:
  explicit ExcelApplication(Dispatched application) : application_(std::move(application)) {}
  void SetDisplayAlerts(bool alerts) override { application_.put(L"DisplayAlerts", alerts); }
  std::unique_ptr<automation::Workbooks> GetWorkbooks() override {
    return std::make_unique<ExcelWorkbooks>(application_.object(L"Workbooks"));
  }
  std::unique_ptr<automation::Workbook> ActiveWorkbook() override {
    return std::make_unique<ExcelWorkbook>(application_.object(L"ActiveWorkbook"));
  }
  void Quit() override { application_.call(L"Quit"); }

 private:
  Dispatched application_;
};

}  // namespace

std::unique_ptr<automation::Application> SpreadsheetAutomation::CreateObject(const std::u16string& name) {
  return std::make_unique<ExcelApplication>(Dispatched::create(name));
}

}  // namespace trvtrout::windows
