#pragma once

#include <span>
#include <string>
#include <string_view>

#include "services/host_services.h"
#include "vtrfile/value_types.h"
#include "vtrfile/variant.h"

namespace trvtrout::host {

// A text of a document for the terminal, in UTF-8; controls and line ends are shown as escapes, so it's one line.
std::string shown(Locale& locale, std::string_view bytes);

// The bytes as lower-case digits.
std::string hex(std::span<const unsigned char> bytes);

// Any value on one line: a text in quotes, True and False, numbers, hex digits of raw bytes, and of a list how long it
// is.
std::string value_text(Locale& locale, vtrfile::Value value);

// The same of a variant, or of an element of one.
std::string value_text(Locale& locale, const vtrfile::VariantValue& value);

}  // namespace trvtrout::host
