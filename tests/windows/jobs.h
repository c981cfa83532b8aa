#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/windows/answers.h"
#include "tests/windows/utility.h"

namespace trvtrout::tests {

// A folder of its own on the machine's disk, removed at its end with all that is in it.
class Folder {
 public:
  explicit Folder(const std::wstring& name = L"job");
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::wstring path(const std::wstring& name) const { return (path_ / name).wstring(); }
  // Puts a copy of a sample document here, under its own name, and returns its path.
  std::wstring add_sample(const std::string& sample) const;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

void save(const std::filesystem::path& path, const std::string& bytes);

// The parts of a document, by the names of their approved reports and of their operations.
struct PartName {
  const char* file;
  const wchar_t* operation;  // behind "ASCII_Output_" and "Compare_"
};
inline constexpr PartName kPartNames[] = {
    {"product", L"Product"}, {"table", L"Table"},     {"field", L"Field"}, {"tree", L"Tree"},
    {"lookup", L"Lookup"},   {"ctrltag", L"CtrlTag"}, {"lang", L"Lang"},   {"dsend", L"DSend"},
};

// A job of a host leaves in the document's folder, byte for byte, what is approved of it: reading, reporting on and
// recovering one document (read.txt, report-PART.csv, recover.txt), or comparing two (compare-PART.csv); where the
// result was False a PART.result beside the report.
void report_on(Way way, std::wstring document);
void compare(Way way, std::wstring first, std::wstring second);

// Holds what a job left in a folder to what is approved. `paths`: those that were passed, which the reports tell;
// `shown`: what the user was told meanwhile. A host that gets no variables back knows of a read its result alone, and
// of a recovery no lists (`has_references` false).
void expect_approved_files(const Folder& folder, const std::string& approved, const std::vector<std::wstring>& paths,
                           const std::vector<Shown>& shown, bool has_references = true);

// Starts a program and returns its exit status. Its output goes where this program's goes.
unsigned long run_program(std::wstring command_line);

// A path of the build, with its drive, as the desktop's programs take it.
std::wstring native_path(const std::string& path);

std::string narrow(const std::wstring& text);  // UTF-8
std::string in_code_page(const std::wstring& text);
std::wstring widen(const std::string& text);

}  // namespace trvtrout::tests
