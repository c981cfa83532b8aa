#include "host/terminal/paged_output.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace trvtrout::host {
namespace {

// Lines that fit the screen; 0 when nobody would page through more.
std::size_t lines_on_screen() {
  const char* const pager = std::getenv("PAGER");
  winsize size{};
  if (!pager || !*pager || isatty(STDOUT_FILENO) == 0 || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return 0;
  return size.ws_row;
}

}  // namespace

PagedOutput::PagedOutput() : room_(lines_on_screen()) {}

PagedOutput::~PagedOutput() {
  // What the shell ends with when there is no such program, or it may not be run: then nothing was shown.
  constexpr int kMayNotRun = 126, kNoSuchProgram = 127;
  const int status = pager_ ? pclose(pager_) : 0;
  const bool shown =
      pager_ && !(WIFEXITED(status) && (WEXITSTATUS(status) == kMayNotRun || WEXITSTATUS(status) == kNoSuchProgram));
  if (!shown) std::cout << held_;
}

PagedOutput::int_type PagedOutput::overflow(int_type character) {
  const char byte = traits_type::to_char_type(character);
  return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

std::streamsize PagedOutput::xsputn(const char* bytes, std::streamsize size) {
  const std::string text(bytes, static_cast<std::size_t>(size));
  if (room_ == 0) {
    std::cout << text;
    return std::cout ? size : 0;
  }
  held_ += text;
  if (pager_) {
    pass_on(text);
  } else if (static_cast<std::size_t>(std::ranges::count(held_, '\n')) >= room_) {
    open_pager();
    if (pager_) {
      pass_on(held_);
    } else {
      std::cout << std::exchange(held_, {});
      room_ = 0;
    }
  }
  return size;
}

// A pager that was closed early has shown enough.
void PagedOutput::pass_on(const std::string& text) { std::fwrite(text.data(), 1, text.size(), pager_); }

void PagedOutput::open_pager() {
  setenv("LESS", "FRX", 0);  // as other tools set it for the pager that most people have
  std::signal(SIGPIPE, SIG_IGN);
  pager_ = popen(std::getenv("PAGER"), "w");
}

}  // namespace trvtrout::host
