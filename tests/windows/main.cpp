#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/windows/holder.h"

// The class is registered already; see tests/windows/run.
int wmain(int count, wchar_t** arguments) {
  if (count == 3 && std::wstring(arguments[1]) == L"--hold") return trvtrout::tests::hold_file(arguments[2]);
  testing::InitGoogleTest(&count, arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int failed = RUN_ALL_TESTS();
  CoUninitialize();
  return failed;
}
