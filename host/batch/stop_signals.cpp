#include "host/batch/stop_signals.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/files/unfinished.h"

namespace trvtrout::host {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

bool is_ignored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

StopSignals::StopSignals(std::function<bool()> stop, std::function<void()> last_words)
    : stop_(std::move(stop)), last_words_(std::move(last_words)) {
  sigemptyset(&signals_);
  // A signal that the command was started to ignore (nohup) stays ignored.
  for (const int signal : kSignals) {
    if (!is_ignored(signal)) sigaddset(&signals_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals_, &before_);
  arrivals_ = signalfd(-1, &signals_, SFD_CLOEXEC);
  end_ = eventfd(0, EFD_CLOEXEC);
  if (arrivals_ < 0 || end_ < 0) throw std::system_error(errno, std::generic_category(), "can't watch for signals");
  thread_ = std::thread([this] { watch(); });
}

StopSignals::~StopSignals() { release(); }

void StopSignals::release() {
  if (!thread_.joinable()) return;
  const std::uint64_t one = 1;
  if (write(end_, &one, sizeof one) != sizeof one) std::abort();  // a counter that is zero takes any number
  thread_.join();
  close(arrivals_);
  close(end_);
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void StopSignals::watch() {
  for (;;) {
    pollfd ends[] = {{arrivals_, POLLIN, 0}, {end_, POLLIN, 0}};
    if (poll(ends, 2, -1) < 0) continue;
    signalfd_siginfo arrived{};
    if ((ends[0].revents & POLLIN) == 0) return;
    if (read(arrivals_, &arrived, sizeof arrived) != sizeof arrived) continue;
    const bool is_first = std::exchange(caught_, static_cast<int>(arrived.ssi_signo)) == 0;
    if (is_first && stop_()) continue;
    platform::remove_unfinished();
    last_words_();
    end_by(caught_);
  }
}

void end_by(int signal) {
  std::signal(signal, SIG_DFL);
  sigset_t just_this;
  sigemptyset(&just_this);
  sigaddset(&just_this, signal);
  raise(signal);
  pthread_sigmask(SIG_UNBLOCK, &just_this, nullptr);
  std::abort();
}

}  // namespace trvtrout::host
