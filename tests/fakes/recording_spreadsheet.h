#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "services/host_services.h"
#include "text/utf8.h"
#include "workbook/automation.h"

namespace trvtrout::fakes {

// A spreadsheet that writes down what is asked of it, with the way to each object in front ("ActiveWorkbook.Close"),
// and can fail at one call. Releasing the application and its sheets counts as a call that can't fail.
class RecordingSpreadsheet : public automation::Spreadsheet {
 public:
  std::vector<std::string> calls;
  std::map<std::string, std::u16string> values;  // of cells, by their address
  std::size_t failing_call = 0;                  // counted from 1; 0: none

  std::unique_ptr<automation::Application> CreateObject(const std::u16string& name) override {
    call("CreateObject " + text::to_utf8(name));
    return std::make_unique<Application>(*this);
  }

 private:
  void call(const std::string& text) {
    calls.push_back(text);
    if (calls.size() == failing_call) throw ServiceError(ErrorNumber::kAutomation, "injected fault in " + text);
  }

  template <class Interface>
  class Object : public Interface {
   public:
    Object(RecordingSpreadsheet& log, std::string path) : log_(log), path_(std::move(path)) {}

   protected:
    void note(const std::string& member) const { log_.call(path_ + member); }
    template <class Made>
    auto make(const std::string& member) const {
      return std::make_unique<Made>(log_, path_ + member);
    }
    RecordingSpreadsheet& log_;
    std::string path_;
  };

  struct Font : Object<automation::Font> {
    using Object::Object;
    void SetColorIndex(std::int16_t index) override { note("ColorIndex := " + std::to_string(index)); }
    void SetBold(bool bold) override { note(bold ? "Bold := True" : "Bold := False"); }
  };

  struct Range : Object<automation::Range> {
    using Object::Object;
    std::unique_ptr<automation::Range> Item(const std::u16string& columns) override {
      return make<Range>("(" + text::to_utf8(columns) + ").");
    }
    std::unique_ptr<automation::Range> Cells() override { return make<Range>("Cells."); }
    void Copy() override { note("Copy"); }
    void SetNumberFormat(const std::u16string& format) override { note("NumberFormat := " + text::to_utf8(format)); }
    void SetHorizontalAlignment(std::int32_t alignment) override {
      note("HorizontalAlignment := " + std::to_string(alignment));
    }
    void Select() override { note("Select"); }
    std::optional<std::u16string> Value() override {
      note("Value");
      const std::size_t begin = path_.find('(') + 1;
      const auto value = log_.values.find(path_.substr(begin, path_.find(')') - begin));
      return value == log_.values.end() ? std::nullopt : std::optional(value->second);
    }
    std::unique_ptr<automation::Font> GetFont() override { return make<Font>("Font."); }
    void AutoFilter() override { note("AutoFilter"); }
  };

  struct Worksheet : Object<automation::Worksheet> {
    using Object::Object;
    ~Worksheet() override { log_.calls.push_back("release " + path_.substr(0, path_.size() - 1)); }
    void SetName(const std::u16string& name) override { note("Name := " + text::to_utf8(name)); }
    std::unique_ptr<automation::Range> Cells() override { return make<Range>("Cells."); }
    std::unique_ptr<automation::Range> Columns() override { return make<Range>("Columns."); }
    std::unique_ptr<automation::Range> GetRange(const std::u16string& addresses) override {
      return make<Range>("Range(" + text::to_utf8(addresses) + ").");
    }
    void Paste() override { note("Paste"); }
  };

  struct Sheets : Object<automation::Sheets> {
    using Object::Object;
    void Add() override { note("Add"); }
  };

  struct Workbook : Object<automation::Workbook> {
    using Object::Object;
    std::unique_ptr<automation::Worksheet> ActiveSheet() override {
      log_.call("ActiveWorkbook.ActiveSheet");
      return std::make_unique<Worksheet>(log_, "Sheet" + std::to_string(++log_.sheets_) + ".");
    }
    std::unique_ptr<automation::Sheets> GetSheets() override { return make<Sheets>("Sheets."); }
    void SaveAs(const std::u16string& filename, std::int32_t access_mode) override {
      note("SaveAs " + text::to_utf8(filename) + ", AccessMode " + std::to_string(access_mode));
    }
    void Close() override { note("Close"); }
  };

  struct Workbooks : Object<automation::Workbooks> {
    using Object::Object;
    void Open(const std::u16string& filename) override { note("Open " + text::to_utf8(filename)); }
    void Close() override { note("Close"); }
  };

  struct Application : automation::Application {
    explicit Application(RecordingSpreadsheet& log) : log_(log) {}
    ~Application() override { log_.calls.emplace_back("release application"); }
    void SetDisplayAlerts(bool alerts) override {
      log_.call(alerts ? "DisplayAlerts := True" : "DisplayAlerts := False");
    }
    std::unique_ptr<automation::Workbooks> GetWorkbooks() override {
      return std::make_unique<Workbooks>(log_, "Workbooks.");
    }
    std::unique_ptr<automation::Workbook> ActiveWorkbook() override {
      return std::make_unique<Workbook>(log_, "ActiveWorkbook.");
    }
    void Quit() override { log_.call("Quit"); }
    RecordingSpreadsheet& log_;
  };

  int sheets_ = 0;
};

}  // namespace trvtrout::fakes
