#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "services/host_services.h"

namespace trvtrout::platform {

// Text on its way to a file, through a buffer. Once something couldn't be written each call says so again, and nothing
// more goes out: it would stand behind a gap.
class TextOutput : public TextStream {
 public:
  explicit TextOutput(std::unique_ptr<BinaryOutput> output);
  ~TextOutput() override;
  TextOutput(const TextOutput&) = delete;
  TextOutput& operator=(const TextOutput&) = delete;

  void WriteLine(std::string_view text) override;
  void Write(std::string_view text) override;
  void Close() override;

 private:
  void flush();
  void put(std::string_view bytes);

  std::unique_ptr<BinaryOutput> output_;
  std::string buffer_;
  std::exception_ptr failure_;
};

}  // namespace trvtrout::platform
