#include "windows/user_windows.h"

#include <algorithm>
#include <vector>

#include "services/guard.h"
#include "windows/dispatched.h"
#include "windows/errors.h"

namespace trvtrout::windows {
namespace {

// A message without a title bears the name of the library.
constexpr std::u16string_view kProgram = u"TrVtrOut";

// As many messages as a queue holds: a window that posts one for each that it handles must not keep the loop.
constexpr int kMaxMessages = 10000;

constexpr std::size_t kMaxPath = 32768;

// The window that owns the save dialog: made at first use, never shown, one for each thread, with which the system
// takes it away. It's of a class of the system's, so that no code of this library is called when the library has gone.
HWND hidden_form() {
  thread_local HWND form = nullptr;
  if (!IsWindow(form)) {
    form = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"frmTrVtrOut_ShowSaveDlg", WS_POPUP, 0, 0, 0, 0, nullptr,
                           nullptr, GetModuleHandleW(nullptr), nullptr);
  }
  return form;
}

}  // namespace

MessageAnswer SystemMessageBox::Show(const std::u16string& prompt, MessageButtons buttons,
                                     const std::optional<std::u16string>& title) {
  const HWND owner = GetActiveWindow();
  const UINT modality = owner ? MB_APPLMODAL : MB_TASKMODAL;
  const std::u16string caption = title.value_or(std::u16string(kProgram));
  const int answer = MessageBoxW(owner, wide(prompt), wide(caption), static_cast<UINT>(buttons) | modality);
  // No answer must not count as one.
  if (answer == 0) throw ServiceError(ErrorNumber::kDeviceError, "can't show a message: " + words_for(GetLastError()));
  return static_cast<MessageAnswer>(answer);
}

void SystemSaveDialog::ShowSave() {
  file_name_.clear();
  if (!show_control()) show_system_dialog();
}

// The control is made anew for each dialog: one that has been used answers with its last path when the user cancels.
bool SystemSaveDialog::show_control() {
  constexpr DISPID kFileName = 1, kFilter = 3, kText = 5, kFilterIndex = 23, kShowSave = 31;
  const std::u16string name = u"MSComDlg.CommonDialog";
  if (!Dispatched::is_registered(name)) return false;
  std::optional<Dispatched> control;
  // Where it's registered without a licence it can't be made.
  guarded([&] { return control = Dispatched::create(name), true; }, [](const Failure&) { return false; });
  if (!control) return false;
  hidden_form();
  control->put(kFilter, filter_);
  control->put(kFilterIndex, static_cast<std::int16_t>(filter_index_));
  control->put(kText, text_);
  control->call(kShowSave);
  const Variant path = control->get(kFileName);
  if (path.get().vt == VT_BSTR) file_name_ = text_of(path.get().bstrVal);
  return true;
}

void SystemSaveDialog::show_system_dialog() {
  std::u16string filter = filter_ + u'|';
  std::ranges::replace(filter, u'|', u'\0');
  std::u16string path(kMaxPath, u'\0');
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = hidden_form();
  dialog.lpstrFilter = wide(filter);
  dialog.nFilterIndex = static_cast<DWORD>(filter_index_);
  dialog.lpstrFile = wide(path);
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  // The source is told and never offered: Enter must not choose the file that is being read.
  dialog.lpstrTitle = wide(text_);
  dialog.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST;
  if (GetSaveFileNameW(&dialog)) {
    file_name_ = path.c_str();
  } else if (const DWORD error = CommDlgExtendedError(); error != 0) {
    throw ServiceError(ErrorNumber::kDeviceError, "can't show the save dialog: error " + std::to_string(error));
  }
}

void HostMessageLoop::DoEvents() {
  MSG message;
  for (int left = kMaxMessages; left > 0 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); --left) {
    if (message.message == WM_QUIT) {
      // The host's own loop is to end by it.
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace trvtrout::windows
