#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trvtrout::spreadsheet::ooxml {

// The two that a package's parts may have; the order of bytes is told by the first two.
enum class XmlEncoding : std::uint8_t { kUtf8, kUtf16Little, kUtf16Big };

XmlEncoding encoding_of(std::string_view bytes);

// The text of `bytes` as UTF-8, up to its last whole character, and what follows that. Nothing if `bytes` can't be had
// back from it.
struct DecodedXml {
  std::string text;
  std::string_view rest;
};
std::optional<DecodedXml> decoded(std::string_view bytes, XmlEncoding encoding);

// The way back from UTF-8.
std::string encoded(std::string text, XmlEncoding encoding);

}  // namespace trvtrout::spreadsheet::ooxml
