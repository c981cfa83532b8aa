#pragma once

#include <csignal>
#include <functional>
#include <thread>

namespace trvtrout::host {

// While it lives, the signals that end a program come to a thread of its own. Threads that are started meanwhile don't
// get them.
class StopSignals {
 public:
  // `stop` is called for the first signal, on that thread; whether it stops in an orderly way. If it doesn't, and at
  // the second signal, the program ends at once: what isn't finished is removed, and `last_words` are said.
  StopSignals(std::function<bool()> stop, std::function<void()> last_words);
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // The signal that came; 0 for none. Only after release().
  int caught() const { return caught_; }
  // From now on signals do again what they did before.
  void release();

 private:
  void watch();

  std::function<bool()> stop_;
  std::function<void()> last_words_;
  sigset_t signals_{}, before_{};
  int arrivals_ = -1, end_ = -1;
  int caught_ = 0;
  std::thread thread_;
};

// Ends the program as this signal does.
[[noreturn]] void end_by(int signal);

}  // namespace trvtrout::host
