#include "reports/cells.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>

namespace trvtrout {
namespace {

// Digits of the general form of a single and of a double.
constexpr int kSingleDigits = 7;
constexpr int kDoubleDigits = 15;
constexpr std::int64_t kCurrencyUnit = 10'000;

void append_general(std::string& row, std::floating_point auto number, int digits) {
  if (number == 0) return append_number(row, 0);  // no minus sign in front of a zero
  std::array<char, 32> text;
  const auto end = std::to_chars(text.begin(), text.end(), number, std::chars_format::general, digits).ptr;
  std::transform(text.begin(), end, text.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; });
  row.append(text.data(), end);
}

void append_integer(std::string& row, std::integral auto number) {
  std::array<char, 24> text;
  row.append(text.data(), std::to_chars(text.begin(), text.end(), number).ptr);
}

void append_currency(std::string& row, std::int64_t scaled) {
  const std::uint64_t amount = scaled < 0 ? 0 - static_cast<std::uint64_t>(scaled) : static_cast<std::uint64_t>(scaled);
  if (scaled < 0) row += '-';
  append_integer(row, amount / kCurrencyUnit);
  std::uint64_t fraction = amount % kCurrencyUnit;
  if (fraction > 0) row += '.';
  for (std::uint64_t unit = kCurrencyUnit / 10; fraction > 0; fraction %= unit, unit /= 10) {
    row += static_cast<char>('0' + fraction / unit);
    if (unit == 1) break;
  }
}

char cleaned(char c) { return c == '\r' || c == '\n' || c == ',' ? ' ' : c; }

}  // namespace

void append_text(std::string& row, std::string_view text, Form form) {
  switch (form) {
    case Form::kAsStored:
      row += text;
      break;
    case Form::kCleaned:
    case Form::kCleanedThenBlank: {
      const std::size_t start = row.size();
      row += text;
      std::transform(row.begin() + static_cast<std::ptrdiff_t>(start), row.end(),
                     row.begin() + static_cast<std::ptrdiff_t>(start), cleaned);
      if (form == Form::kCleanedThenBlank) row += ' ';
      break;
    }
    case Form::kWithoutCommas:
      std::ranges::copy_if(text, std::back_inserter(row), [](char c) { return c != ','; });
      break;
  }
}

void append_number(std::string& row, std::int32_t number) { append_integer(row, number); }

void append_single(std::string& row, float number) { append_general(row, number, kSingleDigits); }

void append_flag(std::string& row, bool flag) { row += flag ? "True" : "False"; }

void append_variant(std::string& row, vtrfile::VariantValue value, Locale& locale) {
  using namespace vtrfile;
  switch (value.tag) {
    case kVariantEmpty:
    case kVariantNull:
      return;
    case kVariantInteger:
      return append_number(row, load<std::int16_t>(value.body));
    case kVariantLong:
      return append_number(row, load<std::int32_t>(value.body));
    case kVariantSingle:
      return append_single(row, load<float>(value.body));
    case kVariantDouble:
      return append_general(row, load<double>(value.body), kDoubleDigits);
    case kVariantCurrency:
      return append_currency(row, load<std::int64_t>(value.body));
    case kVariantDate:
      return append_text(row, locale.Encode(locale.GeneralDate(load<double>(value.body))));
    case kVariantText:
      return append_text(row, Text(value.body).bytes());
    case kVariantFlag:
      return append_flag(row, load<std::int16_t>(value.body) != 0);
    case kVariantByte:
      return append_number(row, load<std::uint8_t>(value.body));
    default:
      throw SubscriptOutOfRange();
  }
}

}  // namespace trvtrout
