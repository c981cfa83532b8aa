#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "component/exporting.h"
#include "component/parts.h"
#include "platform/program/spreadsheet_program.h"
#include "spreadsheet/text/comma_text.h"
#include "spreadsheet/workbook_file.h"
#include "tests/fakes/recording_spreadsheet.h"
#include "tests/support.h"
#include "tests/windows/jobs.h"
#include "windows/system_files.h"
#include "windows/user_locale.h"
#include "workbook/workbook_operations.h"

// The workbook operations and a spreadsheet program in a process of its own, which writes down what is asked of it and
// does the work.
namespace trvtrout::tests {
namespace {

namespace fs = std::filesystem;
using Calls = std::vector<std::string>;

constexpr const wchar_t* kProgramKey = L"Software\\Classes\\Excel.Application";
constexpr const wchar_t* kClass = L"{6A0E1D0C-93D1-4C5C-9C55-1D6B0D5E8F21}";

void set_key(const std::wstring& key, const std::wstring& value) {
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, value.c_str(),
                  static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

// The program under the name that the operations know. wine starts no program that is registered for the user alone.
class Program {
 public:
  Program() { set_key(kProgramKey + std::wstring(L"\\CLSID"), kClass); }
  ~Program() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, kProgramKey);
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, class_key().c_str());
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // The next one that is started fails at one of its calls, counted from 1; 0: at none.
  void fail_at(int call) {
    fs::remove(log_);
    set_key(class_key() + L"\\LocalServer32",
            L"\"" + native_path(PROGRAM) + L"\" \"" + log_ + L"\" " + std::to_wstring(call));
  }
  // What the one that was started writes down at its end, which it comes to by itself.
  Calls calls() const {
    std::ifstream log{fs::path(log_)};
    DWORD id = 0;
    if (!(log >> id)) return {"no program was started"};
    if (const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, id)) {
      constexpr DWORD kMostMilliseconds = 10000;
      const DWORD ended = WaitForSingleObject(process, kMostMilliseconds);
      CloseHandle(process);
      if (ended != WAIT_OBJECT_0) return {"the program is still there"};
    }
    Calls calls;
    log.ignore();
    for (std::string call; std::getline(log, call);) calls.push_back(call);
    return calls;
  }

 private:
  static std::wstring class_key() { return L"Software\\Classes\\CLSID\\" + std::wstring(kClass); }

  const Folder folder_;
  const std::wstring log_ = folder_.path(L"calls.txt");
};

std::u16string utf16(const std::wstring& text) { return {text.begin(), text.end()}; }

// Two documents that were read by objects of the class, and the reports on them.
class Workbooks : public testing::Test {
 protected:
  Workbooks() { read(first, one), read(second, two); }

  void read(Utility& utility, std::wstring& document) {
    std::wstring list;
    VARIANT_BOOL primary = VARIANT_FALSE, secondary = VARIANT_TRUE;
    EXPECT_TRUE(utility.is_true(L"ReadVTR", {&document, &list, &primary}));
    EXPECT_TRUE(caller.is_true(L"ReadVTR", {&document, &list, &document == &one ? &primary : &secondary}));
  }
  std::wstring report(const PartName& part, bool compared) {
    const fs::path path = folder.path(compared ? L"compared.CSV" : L"report.CSV");
    std::wstring made;
    VARIANT_BOOL temporary = VARIANT_TRUE;
    const std::wstring name = part.operation;
    EXPECT_TRUE(compared ? caller.is_true(L"Compare_" + name, {&one, &two, &made})
                         : caller.is_true(L"ASCII_Output_" + name, {&one, &made, &temporary}));
    fs::rename(made, path);
    return path.wstring();
  }
  bool move(const std::wstring& workbook, const std::wstring& report, const std::wstring& sheet, bool compared) {
    std::wstring into = workbook, from = report, name = sheet;
    VARIANT_BOOL color = VARIANT_TRUE;
    IDispatch *primary = first.object(), *other = second.object();
    return compared ? caller.is_true(L"XL_Output_Compared", {&into, &from, &name, &primary, &other, &color})
                    : caller.is_true(L"XL_Output_Statistics", {&into, &from, &name});
  }
  // The same in this process, without the runtime between the operation and the spreadsheet.
  void move_here(automation::Spreadsheet& spreadsheet, const std::wstring& workbook, const std::wstring& report,
                 const Part& part, bool compared) {
    Reading primary, secondary;
    primary.read(sample("plant.vtr"));
    secondary.read(sample("plant-next.vtr"));
    const std::u16string into = utf16(workbook), from = utf16(report), name(part.sheet.name);
    const ReportMove move{into, from, name};
    const auto recount = [](const Reading& of) {
      return [&of](vtrfile::ListId list) { return vtrfile::list_of(list).recount(of.current); };
    };
    const auto failure = compared ? export_comparison(spreadsheet, move, recount(primary), recount(secondary), True)
                                  : output_statistics(spreadsheet, move, &part.sheet);
    EXPECT_FALSE(failure) << failure->what;
  }
  std::wstring empty_workbook(const wchar_t* name, spreadsheet::WorkbookFormat format) {
    const std::wstring path = folder.path(name);
    save(path, spreadsheet::empty_workbook(format));
    return path;
  }

  Program program;
  Folder folder;
  std::wstring one = folder.add_sample("plant.vtr"), two = folder.add_sample("plant-next.vtr");
  Utility caller{Way::kLate}, first, second;
};

// The texts of the cells in column A of a report.
std::map<std::string, std::u16string> labels(const std::wstring& report) {
  const auto sheet = spreadsheet::read_comma_text(file_bytes(report), 2004);
  std::map<std::string, std::u16string> texts;
  for (std::uint32_t row = 0; row < sheet.rows(); ++row) {
    const auto cells = sheet.row(row);
    if (!cells.empty() && cells[0].kind() == spreadsheet::CellKind::kText)
      texts["A" + std::to_string(row + 1)] = text::from_utf8(cells[0].text());
  }
  return texts;
}

TEST_F(Workbooks, ComeOutAsWithoutTheRuntime) {
  windows::SystemFiles files;
  windows::UserLocale locale;
  platform::SpreadsheetProgram here(files, locale);
  program.fail_at(0);
  for (const auto& [name, other, format] : {std::tuple(L"b.xls", L"c.xls", spreadsheet::WorkbookFormat::kBiff8),
                                            {L"b.xlsx", L"c.xlsx", spreadsheet::WorkbookFormat::kOoxml}}) {
    const std::wstring workbook = empty_workbook(name, format);
    for (const bool compared : {false, true}) {
      for (const Part& part : document_parts()) {
        const PartName& names = *std::ranges::find(kPartNames, std::string_view(part.name), &PartName::file);
        const std::wstring text = report(names, compared), sheet(part.sheet.name.begin(), part.sheet.name.end());
        fakes::RecordingSpreadsheet recording;
        recording.values = labels(text);
        move_here(recording, workbook, text, part, compared);
        const std::wstring reference = folder.path(other);
        save(reference, file_bytes(workbook));
        move_here(here, reference, text, part, compared);
        ASSERT_TRUE(move(workbook, text, sheet, compared)) << part.name;
        ASSERT_EQ(program.calls(), recording.calls) << part.name;
        ASSERT_TRUE(file_bytes(workbook) == file_bytes(reference)) << part.name;
      }
      fs::remove(workbook);
      empty_workbook(name, format);
    }
  }
}

// Whatever fails, the result is False, the program is told to quit and is gone, and the workbook is as it was unless it
// was saved before.
TEST_F(Workbooks, EachFailureEndsTheProgram) {
  const std::wstring workbook = empty_workbook(L"b.xls", spreadsheet::WorkbookFormat::kBiff8);
  const std::string empty = file_bytes(workbook);
  for (const bool compared : {false, true}) {
    const std::wstring text = report(kPartNames[1], compared);
    save(workbook, empty);
    program.fail_at(0);
    ASSERT_TRUE(move(workbook, text, L"Tables", compared));
    const Calls whole = program.calls();
    // Colouring makes the same few calls over and over.
    for (int call = 1;; call += compared ? 5 : 1) {
      save(workbook, empty);
      program.fail_at(call);
      const bool result = move(workbook, text, L"Tables", compared);
      const Calls calls = program.calls();
      if (result) break;
      const std::string what = "call " + std::to_string(call);
      ASSERT_GE(calls.size(), 3U) << what << calls.front();
      EXPECT_EQ(calls[calls.size() - 2], "Quit") << what;
      EXPECT_EQ(calls.back(), "release application") << what;
      const auto end = std::ranges::mismatch(calls, whole).in1;
      EXPECT_TRUE(std::all_of(end, calls.end() - 2, [](auto& made) { return made.starts_with("release Sheet"); }))
          << what;
      EXPECT_EQ(std::ranges::count(calls, "ActiveWorkbook.ActiveSheet"),
                std::ranges::count_if(calls, [](auto& made) { return made.starts_with("release Sheet"); }))
          << what;
      const bool saved = std::ranges::any_of(calls, [](auto& made) { return made.starts_with("ActiveWorkbook.Save"); });
      EXPECT_EQ(file_bytes(workbook) == empty, !saved) << what;
    }
  }
}

}  // namespace
}  // namespace trvtrout::tests
