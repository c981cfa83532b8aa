#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "embed/trvtrout.h"
#include "text/utf8.h"

// What comes over the boundary, held to its contract, and what goes back.
namespace trvtrout::embed {

// What a call ends with in place of doing its work, and why, for people.
class Refusal : public std::runtime_error {
 public:
  Refusal(trvtrout_result result, const std::string& why) : std::runtime_error(why), result_(result) {}
  trvtrout_result result() const noexcept { return result_; }

 private:
  trvtrout_result result_;
};

// Where a result goes. Raises Refusal for null, as all of these do; `name` is what messages call it.
template <class Type>
Type& place(Type* given, const char* name) {
  if (!given) throw Refusal(TRVTROUT_INVALID_ARGUMENT, std::string(name) + " is NULL");
  return *given;
}

// A text. Raises Refusal for what isn't UTF-8.
std::u16string text_of(const char* given, const char* name);
// A path as the class knows it. Raises Refusal for an empty one, and one with a backslash.
std::u16string path_of(const char* given, const char* name);

// The valid UTF-8 that is nearest to a text.
inline std::string valid_text(std::u16string_view text) { return text::valid_utf8(text::to_utf8(text)); }
// A text for the caller, who gives it back to trvtrout_free. Raises bad_alloc.
char* handed_out(std::string_view utf8);

// The size that a caller's struct has, raised as a Refusal unless it's one that a version can have: `first` is that of
// the first version.
void require_size(std::uint32_t size, std::size_t first, const char* name);

// The struct that is given, its members that it doesn't have zero. Raises Refusal for members that this version doesn't
// know and that are set.
template <class Struct>
Struct struct_of(const Struct* given, const char* name, std::size_t first = sizeof(Struct)) {
  const std::size_t size = place(given, name).struct_size;
  require_size(given->struct_size, first, name);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(given);
  if (size > sizeof(Struct) &&
      std::any_of(bytes + sizeof(Struct), bytes + size, [](unsigned char byte) { return byte != 0; })) {
    throw Refusal(TRVTROUT_WRONG_SIZE, std::string(name) + " has members that this version doesn't know");
  }
  Struct known{};
  std::memcpy(&known, given, std::min(size, sizeof known));
  return known;
}

// Fills the members that the caller's struct has.
template <class Struct>
void give(Struct* into, Struct made, const char* name, std::size_t first = sizeof(Struct)) {
  const std::uint32_t size = place(into, name).struct_size;
  require_size(size, first, name);
  made.struct_size = size;
  std::memcpy(into, &made, std::min<std::size_t>(size, sizeof made));
}

}  // namespace trvtrout::embed
