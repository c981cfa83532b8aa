#pragma once

#include <iosfwd>
#include <string>

#include "services/host_services.h"

namespace trvtrout::platform {

// Asks on a terminal for the path of a file to write; names none without a person at it (`interactive` false).
class ConsoleSaveDialog : public SaveDialog {
 public:
  ConsoleSaveDialog(Files& files, std::istream& in, std::ostream& out, bool interactive)
      : files_(files), in_(in), out_(out), interactive_(interactive) {}

  void SetFilter(const std::u16string& filter) override { filter_ = filter; }
  void SetFilterIndex(int index) override { filter_index_ = index; }
  void SetText(const std::u16string& text) override { source_ = text; }
  void ShowSave() override;
  std::u16string FileName() override { return file_name_; }

 private:
  std::string question() const;
  bool may_be_written(const std::string& path);

  Files& files_;
  std::istream& in_;
  std::ostream& out_;
  bool interactive_;
  std::u16string filter_;
  int filter_index_ = 1;
  std::u16string source_;
  std::u16string file_name_;
};

}  // namespace trvtrout::platform
