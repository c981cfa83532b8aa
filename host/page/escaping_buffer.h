#pragma once

#include <ostream>
#include <streambuf>
#include <string_view>

namespace trvtrout::host {

// Passes JSON on so that it can stand in an HTML page's script element: what could end the element or begin a comment
// in it (<, >, &) and the two line ends that only scripts know (U+2028, U+2029) become \u escapes. In JSON they stand
// nowhere but in texts, which have that escape.
class EscapingBuffer : public std::streambuf {
 public:
  // `page` must outlive the buffer.
  explicit EscapingBuffer(std::ostream& page) : page_(page) {}
  // Passes on what may have been the begin of U+2028 and wasn't.
  void finish();

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* bytes, std::streamsize size) override;

 private:
  void put(std::string_view text);
  std::size_t put_end_of_line_sign(std::string_view text);

  std::ostream& page_;
  // How many bytes of E2 80 A8 or E2 80 A9 came last.
  std::size_t begun_ = 0;
};

}  // namespace trvtrout::host
