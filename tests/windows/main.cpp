#include <gtest/gtest.h>
#include <windows.h>

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int failed = RUN_ALL_TESTS();
  CoUninitialize();
  return failed;
}
