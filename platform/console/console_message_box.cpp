#include "platform/console/console_message_box.h"

#include <algorithm>
#include <ostream>

#include "platform/console/ask.h"
#include "platform/console/printable.h"

namespace trvtrout::platform {

namespace {

// A message as a line for people; its paths are shown as the machine writes them.
std::string message_line(std::u16string text) {
  std::ranges::replace(text, u'\\', u'/');
  return printable_line(text);
}

}  // namespace

MessageAnswer ConsoleMessageBox::Show(const std::u16string& prompt, MessageButtons buttons,
                                      const std::optional<std::u16string>& title) {
  if (buttons == MessageButtons::kYesNoCancel) return answer(message_line(prompt));
  const std::u16string lead = subject_.empty() ? title.value_or(u"") : subject_;
  out_ << line_start_ << message_line(lead.empty() ? prompt : lead + u": " + prompt) << '\n' << std::flush;
  return MessageAnswer::kOk;
}

const char* ConsoleMessageBox::keeps_files() const {
  if (overwrite_ == Overwrite::kNever) return "--no-clobber was given";
  return overwrite_ == Overwrite::kAsk && !interactive_ ? "there is no terminal to ask on" : nullptr;
}

MessageAnswer ConsoleMessageBox::answer(const std::string& question) {
  if (overwrite_ == Overwrite::kYes) return MessageAnswer::kYes;
  if (keeps_files()) {
    const bool never = overwrite_ == Overwrite::kNever;
    out_ << line_start_ << question << ' '
         << (never ? "Not overwritten (--no-clobber)." : "Not overwritten: use --yes to overwrite.") << '\n'
         << std::flush;
    return MessageAnswer::kCancel;
  }
  if (terminal_) {
    if (!terminal_->take_turn()) return MessageAnswer::kCancel;
    if (terminal_->all_agreed_to) return MessageAnswer::kYes;
  }
  switch (ask_letter(in_, out_,
                     line_start_ + question + " [y]es, yes to [a]ll, [n]o (name another file), [c]ancel: ", "yanc")) {
    case 'a':
      overwrite_ = Overwrite::kYes;
      if (terminal_) terminal_->all_agreed_to = true;
      return MessageAnswer::kYes;
    case 'y':
      return MessageAnswer::kYes;
    case 'n':
      return MessageAnswer::kNo;
    default:
      return MessageAnswer::kCancel;
  }
}

}  // namespace trvtrout::platform
