#pragma once

#include <atomic>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "services/host_services.h"

namespace trvtrout::platform {

// What is answered to a question whether a file may be overwritten.
enum class Overwrite { kAsk, kYes, kNever };

// What the boxes of several threads at one terminal have in common.
struct SharedTerminal {
  std::function<bool()> take_turn;          // waits until the calling thread may ask; false when it may no more
  std::atomic<bool> all_agreed_to = false;  // "all" was answered
};

// Message boxes as lines of a terminal. Without a person at it (`interactive` false) kAsk overwrites nothing.
// The answer "all" stands for kYes from then on.
class ConsoleMessageBox : public MessageBox {
 public:
  // `line_start` goes out in front of each message: what clears the line where something may stand already.
  ConsoleMessageBox(Overwrite overwrite, std::istream& in, std::ostream& out, bool interactive,
                    std::string line_start = {})
      : overwrite_(overwrite), in_(in), out_(out), interactive_(interactive), line_start_(std::move(line_start)) {}

  // What the messages are about; stands in front of them in place of their titles.
  void set_subject(std::u16string subject) { subject_ = std::move(subject); }

  void share(std::shared_ptr<SharedTerminal> terminal) { terminal_ = std::move(terminal); }

  // Why each file that exists is left as it is, for people; null when it depends on an answer, or on none.
  const char* keeps_files() const;

  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override;

 private:
  MessageAnswer answer(const std::string& question);

  Overwrite overwrite_;
  std::istream& in_;
  std::ostream& out_;
  bool interactive_;
  std::string line_start_;
  std::u16string subject_;
  std::shared_ptr<SharedTerminal> terminal_;
};

}  // namespace trvtrout::platform
