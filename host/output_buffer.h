#pragma once

#include <array>
#include <memory>
#include <streambuf>
#include <utility>

#include "services/host_services.h"

namespace trvtrout::host {

// Lets a std::ostream write to a file of the services. What the file raises comes out of close(); the stream only goes
// bad.
class OutputBuffer : public std::streambuf {
 public:
  explicit OutputBuffer(std::unique_ptr<BinaryOutput> file) : file_(std::move(file)) { empty(); }

  // Writes what is left and closes the file. Raises ServiceError, also for what failed before.
  void close() {
    if (!failure_) pass_on();
    if (failure_) std::rethrow_exception(failure_);
    file_->Close();
  }

 private:
  void empty() { setp(room_.data(), room_.data() + room_.size()); }
  void pass_on() {
    try {
      file_->Write({pbase(), static_cast<std::size_t>(pptr() - pbase())});
      empty();
    } catch (const ServiceError&) {
      failure_ = std::current_exception();
    }
  }
  int_type overflow(int_type character) override {
    pass_on();
    return failure_ ? traits_type::eof() : sputc(traits_type::to_char_type(character));
  }

  std::unique_ptr<BinaryOutput> file_;
  std::exception_ptr failure_;
  std::array<char, 65536> room_;
};

}  // namespace trvtrout::host
