#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet {

// The number formats that a spreadsheet gives to what it recognizes; one with decimals stands behind the same without.
enum class ValueFormat : std::uint8_t {
  kGeneral,
  kScientific,
  kGrouped,
  kGroupedDecimals,
  kPercent,
  kPercentDecimals,
  kCurrency,
  kCurrencyDecimals,
  kDate,
  kDayMonthYear,
  kDayMonth,
  kTime,
  kTimeSeconds,
  kClock,
  kClockSeconds,
  kDateTime,
};
inline constexpr std::size_t kValueFormats = static_cast<std::size_t>(ValueFormat::kDateTime) + 1;

// As US settings spell it.
std::string_view spelling(ValueFormat format);

struct CellValue {
  CellKind kind = CellKind::kText;
  double number = 0;  // of kNumber and kDate; 1 or 0 of kBoolean
  ValueFormat format = ValueFormat::kGeneral;
};

// What a spreadsheet with US settings takes the whole text of a cell for; a date without a year is one of
// `present_year`.
CellValue recognized(std::string_view text, int present_year);

}  // namespace trvtrout::spreadsheet
