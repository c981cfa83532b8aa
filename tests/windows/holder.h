#pragma once

#include <string>
#include <windows.h>

namespace trvtrout::tests {

// Another process that holds a file, so that nobody else can open it.
class Holder {
 public:
  explicit Holder(const std::wstring& path);
  ~Holder();
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

 private:
  HANDLE ready_, done_;
  PROCESS_INFORMATION process_{};
};

// What the main program does in that process.
int hold_file(const wchar_t* path);

}  // namespace trvtrout::tests
