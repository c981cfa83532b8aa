#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::vtrfile {

// What became of a record whose form the current format doesn't have, on its way into the document.
enum class Carried {
  kAll,
  kPart,  // it holds more than the upgrade takes over
  kNone,  // it broke off before the upgrade
};
// What kPart means, for people.
inline constexpr const char* kPartlyCarried =
    "it's of the old format, and some of its product's values have no place in the current one";

// What a section's tag says beside its name.
struct TagTexts {
  std::string text1, text2;

  TagTexts() = default;
  TagTexts(std::string_view one, std::string_view two) : text1(one), text2(two) {}
  std::size_t size() const noexcept { return text1.size() + text2.size(); }
  bool operator==(const TagTexts&) const = default;
};

// One part of a file as a read met it: the header, a section with its tag in front, the end tag.
struct PartRead {
  static constexpr std::string_view kHeader = "Header";

  std::string_view name;  // the tag; kHeader for the header
  // Bytes from the start of the file. The records begin at `content`; the last of them, which remains, at `record`.
  std::uint64_t begin = 0, content = 0, record = 0, end = 0;
  int records = 0;
  bool whole = true;  // false: the end of the file or damage broke it off
  Carried carried = Carried::kAll;
  TagTexts tag_texts;
};

// Bytes that a read could make nothing of: tags that name no section, one after the other, with whatever stands
// between them and the next one that does.
struct Gap {
  std::uint64_t begin = 0, end = 0;  // bytes from the start of the file
  std::string found;                 // the first tag, for people
};

// What a read met in its file, whether it came to the end tag or not.
struct FileRead {
  std::vector<PartRead> parts;  // in the file's order
  std::vector<Gap> gaps;
  std::uint64_t bytes = 0;  // of the whole file
};

}  // namespace trvtrout::vtrfile
