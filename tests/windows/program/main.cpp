#include <filesystem>
#include <fstream>
#include <string>
#include <windows.h>

#include "platform/program/spreadsheet_program.h"
#include "tests/fakes/recording_spreadsheet.h"
#include "tests/windows/program/objects.h"
#include "windows/system_files.h"
#include "windows/user_locale.h"

// A spreadsheet program for one host: LOG CALL -Embedding. Writes down its process, then each call that was made, to
// LOG when it ends. Call CALL of its members fails, counted from 1; 0: none does.
namespace trvtrout::tests {
namespace {

// By this it's registered: tests/windows/workbook_test.cpp.
constexpr CLSID kProgramClass = {0x6a0e1d0c, 0x93d1, 0x4c5c, {0x9c, 0x55, 0x1d, 0x6b, 0x0d, 0x5e, 0x8f, 0x21}};
constexpr UINT kMostMilliseconds = 20000;  // a host that forgets the program doesn't keep it forever

class Factory : public IClassFactory {
 public:
  explicit Factory(ProgramLife& life) : life_(life) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == __uuidof(IUnknown) || id == __uuidof(IClassFactory);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
    using Made = std::shared_ptr<automation::Application>;
    const Twin<automation::Application> application = {Made(recording.CreateObject(u"Excel.Application")),
                                                       Made(program_.CreateObject(u"Excel.Application"))};
    return application_object(life_, application)->QueryInterface(id, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  fakes::RecordingSpreadsheet recording;

 private:
  ProgramLife& life_;
  windows::SystemFiles files_;
  windows::UserLocale locale_;
  platform::SpreadsheetProgram program_{files_, locale_};
};

int run(const std::filesystem::path& log_path, long failing_call) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  std::ofstream log(log_path, std::ios::binary);
  log << GetCurrentProcessId() << std::endl;
  ProgramLife life(failing_call);
  Factory factory(life);
  DWORD registered = 0;
  CoRegisterClassObject(kProgramClass, &factory, CLSCTX_LOCAL_SERVER, REGCLS_SINGLEUSE, &registered);
  SetTimer(nullptr, 0, kMostMilliseconds, nullptr);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (message.message == WM_TIMER && !message.hwnd) {
      factory.recording.calls.emplace_back("forgotten");
      break;
    }
    DispatchMessageW(&message);
  }
  CoRevokeClassObject(registered);
  for (const std::string& call : factory.recording.calls) log << call << '\n';
  return 0;
}

}  // namespace
}  // namespace trvtrout::tests

int wmain(int, wchar_t** arguments) { return trvtrout::tests::run(arguments[1], std::stol(arguments[2])); }
