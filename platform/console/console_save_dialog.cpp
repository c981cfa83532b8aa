#include "platform/console/console_save_dialog.h"

#include <istream>
#include <vector>

#include "platform/console/ask.h"
#include "platform/console/printable.h"
#include "platform/files/path.h"
#include "text/utf8.h"

namespace trvtrout::platform {
namespace {

std::vector<std::u16string> split(const std::u16string& filter) {
  std::vector<std::u16string> parts(1);
  for (const char16_t unit : filter) {
    if (unit == u'|') {
      parts.emplace_back();
    } else {
      parts.back() += unit;
    }
  }
  return parts;
}

}  // namespace

void ConsoleSaveDialog::ShowSave() {
  file_name_.clear();
  while (interactive_ && in_) {
    const std::string path = ask_line(in_, out_, question());
    if (path.empty()) return;
    if (!may_be_written(path)) continue;
    file_name_ = class_path(path);
    return;
  }
}

// The source is told and never offered: Enter must not choose the file that is being read.
std::string ConsoleSaveDialog::question() const {
  const std::vector<std::u16string> parts = split(filter_);
  const auto chosen = static_cast<std::size_t>(filter_index_ > 0 ? filter_index_ - 1 : 0) * 2;  // its description
  std::string text = "Path of the file to write";
  if (chosen < parts.size()) text += ", " + printable(parts[chosen]);
  if (!source_.empty()) text += ", from " + printable(source_);
  return text + "; Enter for none: ";
}

bool ConsoleSaveDialog::may_be_written(const std::string& path) {
  if (!has_class_path(path)) {
    out_ << printable(text::from_utf8(path)) << ": " << kNoClassPath << '\n';
    return false;
  }
  const std::u16string name = class_path(path);
  if (!files_.CreateFileSystemObject()->FileExists(name)) return true;
  return ask_letter(in_, out_, printable(text::from_utf8(path)) + " exists. Overwrite it? [y/n] ", "yn") == 'y';
}

}  // namespace trvtrout::platform
