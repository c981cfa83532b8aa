// A text is a value only in the forms below. What a spreadsheet would take for one in a form that isn't told here (a
// fraction, a formula) stays the text that the report shows: a text that could have been a number is easily made one,
// a text that was lost isn't.

#include "spreadsheet/text/cell_value.h"

#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <string>

#include "spreadsheet/text/date_value.h"
#include "text/scanner.h"

namespace trvtrout::spreadsheet {
namespace {

using text::Scanner;

// In the order of ValueFormat.
constexpr std::array<std::string_view, kValueFormats> kSpellings = {
    "General",
    "0.00E+00",
    "#,##0",
    "#,##0.00",
    "0%",
    "0.00%",
    "\"$\"#,##0_);[Red]\\(\"$\"#,##0\\)",
    "\"$\"#,##0.00_);[Red]\\(\"$\"#,##0.00\\)",
    "m/d/yyyy",
    "d-mmm-yy",
    "d-mmm",
    "h:mm",
    "h:mm:ss",
    "h:mm AM/PM",
    "h:mm:ss AM/PM",
    "m/d/yyyy h:mm",
};

// The greatest and the smallest number above zero that a spreadsheet takes.
constexpr double kGreatest = 9.99999999999999E307;
constexpr double kSmallest = std::numeric_limits<double>::min();

// A decimal number digit by digit. Spreadsheets keep 15 significant digits and take further ones for zeros.
class Decimal {
 public:
  void add(std::string_view digits) {
    for (const char digit : digits) {
      if (mantissa_ < kFullMantissa) {
        mantissa_ = 10 * mantissa_ + (digit - '0');
      } else {
        ++exponent_;
      }
    }
  }

  void add_fraction(std::string_view digits) {
    add(digits);
    shift(-static_cast<std::int64_t>(digits.size()));
  }

  void shift(std::int64_t powers_of_ten) { exponent_ += powers_of_ten; }

  // Nothing for a number that is too great; one that is too small is 0.
  std::optional<double> value() const {
    if (mantissa_ == 0 || exponent_ == 0) return static_cast<double>(mantissa_);
    const std::string text = std::to_string(mantissa_) + "e" + std::to_string(exponent_);
    double number = 0;
    const bool out_of_range = std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc();
    if ((out_of_range && exponent_ > 0) || number > kGreatest) return std::nullopt;
    return number < kSmallest ? 0 : number;
  }

 private:
  static constexpr std::int64_t kFullMantissa = 100'000'000'000'000;  // the smallest number of 15 digits

  std::int64_t mantissa_ = 0;
  std::int64_t exponent_ = 0;
};

struct Number {
  Decimal decimal;
  bool whole = false;
  bool grouped = false;
  bool fraction = false;
  bool exponent = false;
};

// Digits, in groups of three from the right or without groups. False for groups that are wrong.
bool take_integer(Scanner& scanner, Number& number) {
  const std::string_view digits = scanner.take_digits();
  number.decimal.add(digits);
  number.whole = !digits.empty();
  if (digits.empty() || digits.size() > 3) return true;
  while (scanner.take(',')) {
    const std::string_view group = scanner.take_digits();
    if (group.size() != 3) return false;
    number.decimal.add(group);
    number.grouped = true;
  }
  return true;
}

// False for an E without digits.
bool take_exponent(Scanner& scanner, Number& number) {
  number.exponent = scanner.take('E');
  if (!number.exponent) return true;
  const bool negative = scanner.take('-');
  if (!negative) scanner.take('+');
  const std::string_view digits = scanner.take_digits();
  constexpr std::int64_t kBeyondAnyText = 1'000'000'000'000;  // which no text has digits enough to make up for
  std::int64_t power = 0;
  for (const char digit : digits) {
    if (power < kBeyondAnyText) power = 10 * power + (digit - '0');
  }
  number.decimal.shift(negative ? -power : power);
  return !digits.empty();
}

std::optional<Number> take_number(Scanner& scanner) {
  Number number;
  if (!take_integer(scanner, number)) return std::nullopt;
  if (scanner.take('.')) {
    const std::string_view digits = scanner.take_digits();
    number.decimal.add_fraction(digits);
    number.fraction = !digits.empty();
  }
  const bool digits_found = number.whole || number.fraction;
  if (!digits_found || !take_exponent(scanner, number)) return std::nullopt;
  return number;
}

// `plain`, or the format behind it, which shows decimals.
ValueFormat with_decimals(ValueFormat plain, const Number& number) {
  return static_cast<ValueFormat>(static_cast<int>(plain) + (number.fraction ? 1 : 0));
}

std::optional<CellValue> number_value(std::string_view text) {
  Scanner scanner(text);
  const bool bracketed = scanner.take('(');
  const bool negative = bracketed || scanner.take('-');
  if (!negative) scanner.take('+');
  const bool currency = scanner.take('$');
  std::optional<Number> number = take_number(scanner);
  if (!number) return std::nullopt;
  const bool percent = scanner.take('%');
  if (bracketed && !scanner.take(')')) return std::nullopt;
  if (!scanner.at_end() || currency + percent + number->exponent > 1) return std::nullopt;

  if (percent) number->decimal.shift(-2);
  const std::optional<double> value = number->decimal.value();
  if (!value) return std::nullopt;
  ValueFormat format = ValueFormat::kGeneral;
  if (number->exponent) {
    format = ValueFormat::kScientific;
  } else if (currency) {
    format = with_decimals(ValueFormat::kCurrency, *number);
  } else if (percent) {
    format = with_decimals(ValueFormat::kPercent, *number);
  } else if (number->grouped) {
    format = with_decimals(ValueFormat::kGrouped, *number);
  }
  // A spreadsheet has no -0.
  return CellValue{CellKind::kNumber, negative && *value != 0 ? -*value : *value, format};
}

std::optional<CellValue> boolean_value(std::string_view text) {
  for (const bool value : {true, false}) {
    Scanner scanner(text);
    if (scanner.take_word(value ? "TRUE" : "FALSE") && scanner.at_end()) {
      return CellValue{CellKind::kBoolean, value ? 1.0 : 0.0};
    }
  }
  return std::nullopt;
}

}  // namespace

std::string_view spelling(ValueFormat format) { return kSpellings[static_cast<std::size_t>(format)]; }

CellValue recognized(std::string_view text, int present_year) {
  if (text.empty()) return {CellKind::kBlank};
  const std::size_t first = text.find_first_not_of(' ');
  // Nearly every text is told from a value by its first character: one of a number, of a month or of a boolean.
  constexpr std::string_view kFirstCharacters = "0123456789+-.$(JFMASONDTjfmasondt";
  if (first == std::string_view::npos || kFirstCharacters.find(text[first]) == std::string_view::npos) return {};
  const std::string_view trimmed = text.substr(first, text.find_last_not_of(' ') + 1 - first);
  if (const auto number = number_value(trimmed)) return *number;
  if (const auto date = date_value(trimmed, present_year)) return *date;
  return boolean_value(trimmed).value_or(CellValue{});
}

}  // namespace trvtrout::spreadsheet
