#include "platform/console/console_message_box.h"

#include <algorithm>
#include <ostream>

#include "platform/console/ask.h"
#include "platform/console/printable.h"

namespace trvtrout::platform {

MessageAnswer ConsoleMessageBox::Show(const std::u16string& prompt, MessageButtons buttons,
                                      const std::optional<std::u16string>& title) {
  if (buttons == MessageButtons::kYesNoCancel) return answer(printable(prompt));
  const std::string lead = subject_.empty() && title ? printable(*title) : subject_;
  if (!lead.empty()) out_ << lead << ": ";
  // One line for each message, as programs and people expect of stderr.
  std::string line = printable(prompt);
  std::ranges::replace(line, '\n', ' ');
  out_ << line << '\n' << std::flush;
  return MessageAnswer::kOk;
}

MessageAnswer ConsoleMessageBox::answer(const std::string& question) {
  if (overwrite_ == Overwrite::kYes) return MessageAnswer::kYes;
  if (overwrite_ == Overwrite::kNever || !interactive_) {
    const bool never = overwrite_ == Overwrite::kNever;
    out_ << question << ' ' << (never ? "Not overwritten (--no-clobber)." : "Not overwritten: say --yes to overwrite.")
         << '\n'
         << std::flush;
    return MessageAnswer::kCancel;
  }
  switch (ask_letter(in_, out_, question + " [y]es, [n]o (name another file), [c]ancel: ", "ync")) {
    case 'y':
      return MessageAnswer::kYes;
    case 'n':
      return MessageAnswer::kNo;
    default:
      return MessageAnswer::kCancel;
  }
}

}  // namespace trvtrout::platform
