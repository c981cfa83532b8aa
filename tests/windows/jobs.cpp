#include "tests/windows/jobs.h"

#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <windows.h>

#include "tests/support.h"
#include "text/utf8.h"

namespace trvtrout::tests {

namespace fs = std::filesystem;

std::string narrow(const std::wstring& text) { return text::to_utf8(std::u16string(text.begin(), text.end())); }

std::string in_code_page(const std::wstring& text) {
  std::string bytes(2 * text.size(), '\0');
  const int length = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
  return bytes.substr(0, static_cast<std::size_t>(length));
}

std::wstring native_path(const std::string& path) { return fs::absolute(path).make_preferred().wstring(); }

std::wstring widen(const std::string& text) {
  const std::u16string wide = text::from_utf8(text);
  return {wide.begin(), wide.end()};
}

Folder::Folder(const std::wstring& name) {
  static int number = 0;
  path_ = fs::temp_directory_path() /
          (L"trvtrout-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++number)) / name;
  fs::create_directories(path_);
}

Folder::~Folder() {
  std::error_code ignored;
  fs::remove_all(path_.parent_path(), ignored);
}

std::wstring Folder::add_sample(const std::string& sample) const {
  const std::wstring target = path(fs::path(sample).filename().wstring());
  fs::copy_file(SAMPLES "/" + sample, target, fs::copy_options::overwrite_existing);
  return target;
}

void save(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

namespace {

// Gives a report its approved name, and tells of a result that was False.
void keep(const fs::path& folder, const std::string& name, bool result, const std::wstring& report) {
  fs::rename(report, folder / (name + ".csv"));
  if (!result) save(folder / (name + ".result"), "False\r\n");
}

}  // namespace

void report_on(Way way, std::wstring document) {
  const fs::path folder = fs::path(document).parent_path();
  Utility utility(way);
  std::wstring list = L"unchanged", path;
  VARIANT_BOOL primary = VARIANT_FALSE, temporary = VARIANT_TRUE;
  const std::wstring result = utility.call(L"ReadVTR", {&document, &list, &primary});
  const bool untouched = list == L"unchanged";
  save(folder / "read.txt",
       "result: " + narrow(result) + "\r\nStructureList:" + (untouched ? " " : "\r\n") + narrow(list) + "\r\n");
  if (untouched && result == L"False") return;  // an unsupported version
  for (const PartName& part : kPartNames) {
    const bool written =
        utility.is_true(L"ASCII_Output_" + std::wstring(part.operation), {&document, &path, &temporary});
    keep(folder, std::string("report-") + part.file, written, path);
  }
  std::wstring recovered = (folder / "recovered.vtr").wstring(), message = L"@GIVEN@";
  EXPECT_TRUE(utility.is_true(L"RecoverVTR", {&recovered, &message}));
  save(folder / "recover.txt", narrow(message));
}

void compare(Way way, std::wstring first, std::wstring second) {
  Utility utility(way);
  std::wstring list, path;
  VARIANT_BOOL primary = VARIANT_FALSE, secondary = VARIANT_TRUE;
  EXPECT_TRUE(utility.is_true(L"ReadVTR", {&second, &list, &secondary}));
  EXPECT_TRUE(utility.is_true(L"ReadVTR", {&first, &list, &primary}));
  for (const PartName& part : kPartNames) {
    const bool written = utility.is_true(L"Compare_" + std::wstring(part.operation), {&first, &second, &path});
    keep(fs::path(first).parent_path(), std::string("compare-") + part.file, written, path);
  }
}

namespace {

// Puts marks where the paths and the moment first stand. The moment has the machine's general form and is now.
std::string marked(std::string report, const std::vector<std::wstring>& paths) {
  const char* const marks[2][2] = {{"@FNAME@", ""}, {"@PRIMFNAME@", "@SECFNAME@"}};
  for (std::size_t at = 0; at < paths.size(); ++at) {
    const std::string path = in_code_page(paths[at]);
    if (const auto place = report.find(path); place != report.npos)
      report.replace(place, path.size(), marks[paths.size() - 1][at]);
  }
  const std::string label = "Date and time created:,";
  const auto begin = report.find(label) + label.size();
  std::wstring moment = widen(report.substr(begin, report.find("\r\n", begin) - begin));
  DATE written = 0, now = 0;
  SYSTEMTIME time;
  GetLocalTime(&time);
  SystemTimeToVariantTime(&time, &now);
  EXPECT_EQ(VarDateFromStr(moment.data(), LOCALE_USER_DEFAULT, 0, &written), S_OK) << narrow(moment);
  EXPECT_NEAR(written, now, 10.0 / (24 * 60)) << narrow(moment);
  BSTR general = nullptr;
  VarBstrFromDate(written, LOCALE_USER_DEFAULT, 0, &general);
  EXPECT_EQ(moment, general);
  SysFreeString(general);
  return report.replace(begin, moment.size(), "@DATE@");
}

std::set<std::string> approved_names(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const fs::path extension = entry.path().extension();
    const std::string name = entry.path().filename().string();
    // What else is approved of a pair is the work of other programs.
    if (extension != ".vtr" && !name.starts_with("diff")) names.insert(name);
  }
  return names;
}

}  // namespace

void expect_approved_files(const Folder& folder, const std::string& approved, const std::vector<std::wstring>& paths,
                           const std::vector<Shown>& shown, bool has_references) {
  const fs::path wanted = SAMPLES "/expected/" + approved;
  EXPECT_EQ(approved_names(folder.path()), approved_names(wanted)) << approved;
  for (const std::string& name : approved_names(wanted)) {
    const fs::path made = folder.path() / name;
    if (!fs::exists(made)) continue;
    std::string bytes = file_bytes(made);
    if (name.ends_with(".csv")) bytes = marked(std::move(bytes), paths);
    if (name == "read.txt") {
      for (const Shown& box : shown) {
        bytes += "message:\r\n" + narrow(box.text) + "\r\n";
        EXPECT_EQ(box.title, L"VTR Output Warning");
      }
    }
    std::string text = file_bytes(wanted / name);
    if (!has_references && name == "read.txt") text.resize(text.find('\n') + 1);
    if (!has_references && name == "recover.txt") text = "@GIVEN@";
    EXPECT_EQ(bytes, text) << approved << ' ' << name;
  }
}

unsigned long run_program(std::wstring command_line) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, command_line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
    return GetLastError();
  DWORD status = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
  return status;
}

}  // namespace trvtrout::tests
