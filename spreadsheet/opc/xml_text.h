#pragma once

#include <string>
#include <string_view>

namespace trvtrout::spreadsheet::ooxml {

// Appends `text` (UTF-8) as the content of an element. What XML can't hold - control characters, U+FFFE, U+FFFF, a byte
// that isn't UTF-8 - stands there as _xHHHH_, which spreadsheets read back; a literal _xHHHH_ is kept from that.
void append_xml_text(std::string& out, std::string_view text);

// The same for an attribute's value, with the double quotes around it.
std::string xml_attribute(std::string_view text);

// The text that a value with _xHHHH_ stands for.
std::string without_escapes(std::string_view value);

}  // namespace trvtrout::spreadsheet::ooxml
