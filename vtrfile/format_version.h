#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace trvtrout::vtrfile {

// A format version as a header spells it. Versions compare as their texts do.
struct FormatVersion {
  char spelled[9] = {};

  consteval FormatVersion(const char (&text)[9]) { std::ranges::copy(text, spelled); }
  constexpr std::string_view text() const noexcept { return {spelled, sizeof spelled - 1}; }
};

inline constexpr FormatVersion kOldFormatVersion("01.00.00");
inline constexpr FormatVersion kCurrentFormatVersion("01.02.00");

// What a format version means for the reader.
enum class FormatClass { kCurrent, kOld, kUnsupported };

constexpr FormatClass classify(std::string_view version) noexcept {
  if (version == kOldFormatVersion.text()) return FormatClass::kOld;
  const bool current = version > kOldFormatVersion.text() && version <= kCurrentFormatVersion.text();
  return current ? FormatClass::kCurrent : FormatClass::kUnsupported;
}

// A member that stands in files of `version` and later ones; in a file of an earlier one it's empty.
template <FormatVersion version, class Value>
struct Since {
  static constexpr std::size_t kLeastBytes = 0;
  static constexpr std::string_view kVersion = version.text();

  Value value;
  operator const Value&() const noexcept { return value; }
};

}  // namespace trvtrout::vtrfile
