#include "platform/files/text_output.h"

#include <utility>

#include "services/guard.h"

namespace trvtrout::platform {
namespace {

constexpr std::size_t kBufferSize = 65536;

}  // namespace

TextOutput::TextOutput(std::unique_ptr<BinaryOutput> output) : output_(std::move(output)) {
  buffer_.reserve(kBufferSize);
}

TextOutput::~TextOutput() {
  guarded([&] { return flush(), true; }, [](const Failure&) { return false; });
}

void TextOutput::WriteLine(std::string_view text) {
  Write(text);
  Write("\r\n");
}

void TextOutput::Write(std::string_view text) {
  if (buffer_.size() + text.size() > kBufferSize) flush();
  if (text.size() > kBufferSize) return put(text);
  if (failure_) std::rethrow_exception(failure_);
  buffer_.append(text);
}

void TextOutput::Close() {
  flush();
  output_->Close();
}

void TextOutput::flush() {
  put(buffer_);
  buffer_.clear();
}

void TextOutput::put(std::string_view bytes) {
  if (failure_) std::rethrow_exception(failure_);
  try {
    if (!bytes.empty()) output_->Write(bytes);
  } catch (...) {
    failure_ = std::current_exception();
    throw;
  }
}

}  // namespace trvtrout::platform
