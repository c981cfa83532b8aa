#pragma once

#include <string>

#include "services/host_services.h"

// What the user sees, and the host's message loop.
namespace trvtrout::windows {

// The system's message box, in front of the thread's active window.
class SystemMessageBox : public MessageBox {
 public:
  // Raises ServiceError when it can't be shown.
  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override;
};

// The common dialog control where it's registered and may be made, else the system's own dialog.
class SystemSaveDialog : public SaveDialog {
 public:
  void SetFilter(const std::u16string& filter) override { filter_ = filter; }
  void SetFilterIndex(int index) override { filter_index_ = index; }
  void SetText(const std::u16string& text) override { text_ = text; }
  // Raises ServiceError when it can't be shown.
  void ShowSave() override;
  std::u16string FileName() override { return file_name_; }

 private:
  bool show_control();
  void show_system_dialog();

  std::u16string filter_, text_, file_name_;
  int filter_index_ = 0;
};

class HostMessageLoop : public MessageLoop {
 public:
  void DoEvents() override;
};

}  // namespace trvtrout::windows
