#include "host/terminal/value_text.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "host/counted.h"
#include "platform/console/printable.h"
#include "text/utf8.h"
#include "vtrfile/variant.h"

namespace trvtrout::host {
namespace {

using namespace vtrfile;

template <class Number>
std::string number_text(Number number) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

std::string quoted(Locale& locale, std::string_view bytes) { return '"' + shown(locale, bytes) + '"'; }

std::string array_text(Locale& locale, const VariantValue& value);

std::string body_text(Locale& locale, const VariantValue& value) {
  const unsigned char* const body = value.body;
  switch (value.tag) {
    case kVariantEmpty:
      return "Empty";
    case kVariantNull:
      return "Null";
    case kVariantInteger:
      return number_text(load<std::int16_t>(body));
    case kVariantLong:
      return number_text(load<std::int32_t>(body));
    case kVariantSingle:
      return number_text(load<float>(body));
    case kVariantDouble:
      return number_text(load<double>(body));
    case kVariantCurrency:
      return "currency " + number_text(load<std::int64_t>(body)) + "/10000";
    case kVariantDate:
      return text::to_utf8(locale.GeneralDate(load<double>(body)));
    case kVariantText:
      return quoted(locale, Text(body).bytes());
    case kVariantFlag:
      return load<std::int16_t>(body) != 0 ? "True" : "False";
    case kVariantByte:
      return number_text(int{*body});
    default:
      return array_text(locale, value);
  }
}

// The first elements of a variant that holds an array.
std::string array_text(Locale& locale, const VariantValue& value) {
  constexpr std::size_t kMost = 8;
  const std::size_t count = element_count(value);
  std::string text;
  for (std::size_t place = 0; place < std::min(count, kMost); ++place) {
    (text += text.empty() ? "" : ", ") += body_text(locale, element_at(value, place));
  }
  return '{' + text + (count > kMost ? ", and " + std::to_string(count - kMost) + " more}" : "}");
}

std::string variant_text(Locale& locale, Var variant) { return body_text(locale, value_of(variant)); }

std::string run_text(Locale& locale, Value run) {
  if (!run.run()) return "Empty";
  std::string text;
  const auto slots = slots_of(run);
  for (std::size_t slot = 0; slot < slots.size(); ++slot) {
    if (slots[slot].empty()) continue;
    (text += text.empty() ? "" : ", ") += '[' + std::to_string(slot + 1) + "] " + variant_text(locale, slots[slot]);
  }
  return text;
}

std::string array_text(Value value, const std::string& what) {
  if (!value.array().allocated()) return "none";
  const std::int64_t lower = value.array().lower();
  return counted(value.array().size(), what) + (lower == 1 ? "" : " from " + std::to_string(lower) + " on");
}

}  // namespace

std::string hex(std::span<const unsigned char> bytes) {
  std::string digits;
  for (const unsigned char byte : bytes) {
    std::array<char, 3> two;
    std::snprintf(two.data(), two.size(), "%02x", byte);
    digits += two.data();
  }
  return digits;
}

std::string shown(Locale& locale, std::string_view bytes) {
  std::string line;
  std::size_t at = 0;
  while (at < bytes.size()) {
    const std::size_t end = std::min(bytes.find_first_of("\r\n\t", at), bytes.size());
    line += platform::printable_line(locale.Decode(bytes.substr(at, end - at)));
    if (end < bytes.size()) line += bytes[end] == '\r' ? "\\r" : bytes[end] == '\n' ? "\\n" : "\\t";
    at = end + 1;
  }
  return line;
}

std::string value_text(Locale& locale, Value value) {
  switch (value.kind()) {
    case Kind::kInt16:
    case Kind::kInt32:
      return number_text(value.integer());
    case Kind::kFloat:
      return number_text(value.real());
    case Kind::kFlag:
      return value.flag() ? "True" : "False";
    case Kind::kText:
      return quoted(locale, value.text().bytes());
    case Kind::kRaw:
      return hex(value.bytes());
    case Kind::kVariant:
      return variant_text(locale, value.variant());
    case Kind::kVariantRun:
      return run_text(locale, value);
    case Kind::kBytes:
      return array_text(value, "byte");
    case Kind::kArray:
      return array_text(value, value.type().element->kind == Kind::kText ? "text" : "slot");
    case Kind::kRun:
      return counted(value.elements(), "value");
    case Kind::kRecord:
      return value.type().name;
  }
  return {};
}

std::string value_text(Locale& locale, const VariantValue& value) { return body_text(locale, value); }

}  // namespace trvtrout::host
