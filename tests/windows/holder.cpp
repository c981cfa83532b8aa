#include "tests/windows/holder.h"

namespace trvtrout::tests {
namespace {

HANDLE event(const wchar_t* name) { return CreateEventW(nullptr, TRUE, FALSE, name); }

constexpr const wchar_t* kReady = L"trvtrout-file-is-held";
constexpr const wchar_t* kDone = L"trvtrout-file-is-free";

}  // namespace

Holder::Holder(const std::wstring& path) : ready_(event(kReady)), done_(event(kDone)) {
  wchar_t program[MAX_PATH];
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  std::wstring command = L"\"" + std::wstring(program) + L"\" --hold \"" + path + L"\"";
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process_);
  WaitForSingleObject(ready_, INFINITE);
}

Holder::~Holder() {
  SetEvent(done_);
  WaitForSingleObject(process_.hProcess, INFINITE);
  for (const HANDLE handle : {process_.hProcess, process_.hThread, ready_, done_}) CloseHandle(handle);
}

int hold_file(const wchar_t* path) {
  const HANDLE file =
      CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  SetEvent(event(kReady));
  WaitForSingleObject(event(kDone), INFINITE);
  return file == INVALID_HANDLE_VALUE;
}

}  // namespace trvtrout::tests
