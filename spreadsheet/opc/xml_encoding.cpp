#include "spreadsheet/opc/xml_encoding.h"

#include <cstddef>

#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

// Where in a unit its upper byte stands.
std::size_t upper_byte(XmlEncoding encoding) { return encoding == XmlEncoding::kUtf16Little ? 1 : 0; }

}  // namespace

XmlEncoding encoding_of(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return XmlEncoding::kUtf16Little;
  return bytes.starts_with("\xFE\xFF") ? XmlEncoding::kUtf16Big : XmlEncoding::kUtf8;
}

std::optional<DecodedXml> decoded(std::string_view bytes, XmlEncoding encoding) {
  if (encoding == XmlEncoding::kUtf8) return DecodedXml{std::string(bytes), {}};
  const std::size_t upper = upper_byte(encoding);
  const auto byte = [bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2)
    units += static_cast<char16_t>(byte(at + upper) << 8 | byte(at + 1 - upper));
  if (!units.empty() && text::is_high_half(units.back())) units.pop_back();
  DecodedXml result{text::to_utf8(units), bytes.substr(2 * units.size())};
  if (text::from_utf8(result.text) != units) return std::nullopt;
  return result;
}

std::string encoded(std::string text, XmlEncoding encoding) {
  if (encoding == XmlEncoding::kUtf8) return text;
  const std::u16string units = text::from_utf8(text);
  const std::size_t upper = upper_byte(encoding);
  std::string bytes(2 * units.size(), '\0');
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    bytes[2 * unit + upper] = static_cast<char>(units[unit] >> 8);
    bytes[2 * unit + 1 - upper] = static_cast<char>(units[unit] & 0xFF);
  }
  return bytes;
}

}  // namespace trvtrout::spreadsheet::ooxml
