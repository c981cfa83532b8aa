#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The platform's own headers, of which the first must come first. They name functions by macros, two of which are names
// of the class's services too.
// clang-format off
#include <windows.h>
#include <commdlg.h>
#include <oaidl.h>
#include <oleauto.h>
#include <wrl/client.h>
// clang-format on

#undef DeleteFile
#undef MessageBox

namespace trvtrout::windows {

using Microsoft::WRL::ComPtr;

// 16-bit text and that of the platform are the same units under two names.
inline const wchar_t* wide(const std::u16string& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }
inline wchar_t* wide(std::u16string& text) { return reinterpret_cast<wchar_t*>(text.data()); }
inline std::u16string_view narrow(std::wstring_view text) {
  return {reinterpret_cast<const char16_t*>(text.data()), text.size()};
}

}  // namespace trvtrout::windows
