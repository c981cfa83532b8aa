#include "tests/windows/answers.h"

#include <algorithm>
#include <dlgs.h>
#include <initializer_list>

namespace trvtrout::tests {
namespace {

constexpr DWORD kPauseMilliseconds = 5;

std::wstring text_of(HWND window) {
  wchar_t text[1024];
  // Asked of the window itself: GetWindowText doesn't read the fields of other programs.
  const auto length = SendMessageW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
  return {text, static_cast<std::size_t>(length)};
}

std::wstring class_of(HWND window) {
  wchar_t name[64];
  return {name, static_cast<std::size_t>(GetClassNameW(window, name, std::size(name)))};
}

template <class Take>
BOOL CALLBACK take_window(HWND window, LPARAM take) {
  (*reinterpret_cast<Take*>(take))(window);
  return TRUE;
}

template <class Take>
void for_each_dialog(Take take) {
  EnumWindows(take_window<Take>, reinterpret_cast<LPARAM>(&take));
}

template <class Take>
void for_each_child(HWND window, Take take) {
  EnumChildWindows(window, take_window<Take>, reinterpret_cast<LPARAM>(&take));
}

HWND child_of_kind(HWND dialog, const wchar_t* kind, std::initializer_list<int> ids) {
  HWND found = nullptr;
  for_each_child(dialog, [&](HWND child) {
    const bool is_one = std::ranges::find(ids, GetDlgCtrlID(child)) != ids.end() && class_of(child) == kind;
    if (is_one && IsWindowVisible(child)) found = child;
  });
  return found;
}

HWND button_of(HWND dialog, int id) { return child_of_kind(dialog, L"Button", {id}); }

// For the file's name; it may be part of a list.
HWND field_of(HWND dialog) { return child_of_kind(dialog, L"Edit", {edt1, cmb13}); }

Shown read(HWND dialog) {
  Shown shown;
  shown.title = text_of(dialog);
  for_each_child(dialog, [&](HWND child) {
    if (!IsWindowVisible(child)) return;
    const std::wstring kind = class_of(child);
    if (kind == L"Static" && shown.text.empty()) shown.text = text_of(child);
    if (kind == L"Button") shown.buttons.push_back(GetDlgCtrlID(child));
  });
  std::ranges::sort(shown.buttons);
  if (const HWND filters = child_of_kind(dialog, L"ComboBox", {cmb1})) shown.filter = text_of(filters);
  if (const HWND field = field_of(dialog)) shown.name = text_of(field);
  return shown;
}

}  // namespace

Answers::Answers(std::deque<Answer> answers)
    : answers_(std::move(answers)), stopped_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  const auto run = [](void* self) -> DWORD {
    static_cast<Answers*>(self)->look();
    return 0;
  };
  thread_ = CreateThread(nullptr, 0, run, this, 0, nullptr);
}

const std::vector<Shown>& Answers::stop() {
  if (thread_) {
    SetEvent(stopped_);
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    CloseHandle(stopped_);
    thread_ = nullptr;
  }
  return shown_;
}

void Answers::look() {
  while (WaitForSingleObject(stopped_, kPauseMilliseconds) == WAIT_TIMEOUT) {
    for_each_dialog([this](HWND window) {
      if (class_of(window) != L"#32770" || !IsWindowVisible(window) || !IsWindowEnabled(window)) return;
      if (std::ranges::find(answered_, window) == answered_.end()) answer(window);
    });
    std::erase_if(answered_, [](HWND window) { return !IsWindow(window); });
  }
}

void Answers::answer(HWND dialog) {
  Answer given{button_of(dialog, IDCANCEL) ? IDCANCEL : IDOK};
  if (!answers_.empty()) given = answers_.front();
  const HWND button = button_of(dialog, given.button);
  if (!button) return;  // it's still being built
  if (!answers_.empty()) answers_.pop_front();
  shown_.push_back(read(dialog));
  answered_.push_back(dialog);
  if (!given.path.empty()) SendMessageW(field_of(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(given.path.c_str()));
  PostMessageW(button, BM_CLICK, 0, 0);
}

}  // namespace trvtrout::tests
