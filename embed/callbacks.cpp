#include "embed/callbacks.h"

#include <algorithm>
#include <array>
#include <memory>

#include "embed/arguments.h"
#include "platform/files/path.h"

namespace trvtrout::embed {
namespace {

constexpr std::uint64_t kToldEach = 65536;
constexpr std::size_t kPathRoom = 32768;

// Prompts name paths as the class knows them.
std::string prompt_text(std::u16string prompt) {
  std::ranges::replace(prompt, u'\\', u'/');
  return valid_text(prompt);
}

}  // namespace

void HostWatch::raise_stopped() {
  stopped_ = true;
  throw Stopped();
}

void HostWatch::require_going() {
  if (stop_) raise_stopped();
}

void HostWatch::tell(const char* path, std::uint64_t done, std::uint64_t total) {
  const trvtrout_progress progress{sizeof progress, 0, path, done, total};
  if (host_.progress(host_.context, &progress) != 0) raise_stopped();
}

void HostWatch::at(const std::u16string& path, std::uint64_t done, std::uint64_t total) {
  require_going();
  const bool due = path != path_ || done < told_ || done >= told_ + kToldEach || done == total;
  if (!host_.progress || !due) return;
  path_ = path;
  told_ = done;
  tell(text::valid_utf8(platform::machine_path(path)).c_str(), done, total);
}

void HostWatch::at_output(std::uint64_t done) {
  require_going();
  if (host_.progress) tell(nullptr, done, 0);
}

MessageAnswer HostMessageBox::Show(const std::u16string& prompt, MessageButtons buttons,
                                   const std::optional<std::u16string>& title) {
  const MessageAnswer answer = ask(prompt, buttons, title);
  if (answer == MessageAnswer::kCancel) declined_ = true;
  return answer;
}

MessageAnswer HostMessageBox::ask(const std::u16string& prompt, MessageButtons buttons,
                                  const std::optional<std::u16string>& title) {
  const bool is_question = buttons == MessageButtons::kYesNoCancel;
  const MessageAnswer without = is_question ? MessageAnswer::kCancel : MessageAnswer::kOk;
  if (!host_.ask) return without;
  const std::string shown = prompt_text(prompt), named = valid_text(title.value_or(u""));
  const trvtrout_question question{sizeof question, static_cast<int32_t>(buttons), shown.c_str(),
                                   title ? named.c_str() : nullptr};
  const int32_t answer = host_.ask(host_.context, &question);
  const bool known = is_question && (answer == TRVTROUT_ANSWER_YES || answer == TRVTROUT_ANSWER_NO);
  return known ? static_cast<MessageAnswer>(answer) : without;
}

void HostSaveDialog::SetFilter(const std::u16string& filter) { filter_ = valid_text(filter); }

void HostSaveDialog::SetText(const std::u16string& text) { source_ = valid_text(text); }

void HostSaveDialog::ShowSave() {
  file_name_.clear();
  declined_ = true;
  if (!host_.choose_path) return;
  const auto room = std::make_unique<std::array<char, kPathRoom>>();
  const trvtrout_path_question question{sizeof question, filter_index_, filter_.c_str(), source_.c_str()};
  if (host_.choose_path(host_.context, &question, room->data(), room->size()) == 0) return;
  room->back() = '\0';
  file_name_ = path_of(room->data(), "the path that the host chose");
  declined_ = false;
}

}  // namespace trvtrout::embed
