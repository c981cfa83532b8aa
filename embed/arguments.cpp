#include "embed/arguments.h"

#include <cstdlib>
#include <new>

#include "platform/files/path.h"

namespace trvtrout::embed {
namespace {

// No struct of the interface will be as large; what is, was never set.
constexpr std::size_t kLargestStruct = 1024;

std::string_view utf8_of(const char* given, const char* name) {
  const std::string_view text = &place(given, name);
  if (text::valid_utf8(text) != text) throw Refusal(TRVTROUT_INVALID_TEXT, std::string(name) + " isn't valid UTF-8");
  return text;
}

}  // namespace

std::u16string text_of(const char* given, const char* name) { return text::from_utf8(utf8_of(given, name)); }

std::u16string path_of(const char* given, const char* name) {
  const std::string_view path = utf8_of(given, name);
  if (path.empty()) throw Refusal(TRVTROUT_INVALID_ARGUMENT, std::string(name) + " is empty");
  if (!platform::has_class_path(path)) {
    throw Refusal(TRVTROUT_INVALID_ARGUMENT, std::string(path) + ": " + platform::kNoClassPath);
  }
  return platform::class_path(path);
}

char* handed_out(std::string_view utf8) {
  auto* const text = static_cast<char*>(std::malloc(utf8.size() + 1));
  if (!text) throw std::bad_alloc();
  utf8.copy(text, utf8.size());
  text[utf8.size()] = '\0';
  return text;
}

void require_size(std::uint32_t size, std::size_t first, const char* name) {
  if (size >= first && size <= kLargestStruct) return;
  throw Refusal(TRVTROUT_WRONG_SIZE, std::string("struct_size of ") + name + " is " + std::to_string(size) +
                                         ", and must be sizeof of the struct, at least " + std::to_string(first));
}

}  // namespace trvtrout::embed
