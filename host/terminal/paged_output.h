#pragma once

#include <cstdio>
#include <ostream>
#include <streambuf>
#include <string>

namespace trvtrout::host {

// Standard output for people: what is longer than the terminal's screen goes through the program that $PAGER names, if
// it names one. Where stdout is no terminal nothing is held back.
class PagedOutput : private std::streambuf {
 public:
  PagedOutput();
  // Waits until the pager has been closed.
  ~PagedOutput() override;
  PagedOutput(const PagedOutput&) = delete;
  PagedOutput& operator=(const PagedOutput&) = delete;

  std::ostream& stream() { return stream_; }

 private:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* bytes, std::streamsize size) override;
  void pass_on(const std::string& text);
  void open_pager();

  std::string held_;      // all of it: it may fit the screen, or the pager may not be there
  std::size_t room_ = 0;  // lines that fit; 0: nothing is held back
  std::FILE* pager_ = nullptr;
  std::ostream stream_{this};
};

}  // namespace trvtrout::host
