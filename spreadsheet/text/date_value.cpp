#include "spreadsheet/text/date_value.h"

#include <array>
#include <chrono>

#include "text/calendar.h"
#include "text/scanner.h"

namespace trvtrout::spreadsheet {
namespace {

namespace chrono = std::chrono;
using text::Scanner;

constexpr std::array<std::string_view, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                      "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
constexpr double kSecondsInDay = 24 * 60 * 60;

struct Date {
  int year = 0;
  int month = 0;
  int day = 0;
  ValueFormat format = ValueFormat::kDate;
};

struct Time {
  int second = 0;  // of the day
  ValueFormat format = ValueFormat::kTime;
};

std::optional<int> serial_number(const Date& date) {
  // Spreadsheets count a day that 1900 didn't have, so each day before it is one less than the calendar makes it.
  constexpr int kDayThatNeverWas = 60;
  if (date.year < 1900 || date.year > 9999) return std::nullopt;
  if (date.year == 1900 && date.month == 2 && date.day == 29) return kDayThatNeverWas;
  const chrono::year_month_day calendar = chrono::year{date.year} / date.month / date.day;
  if (!calendar.ok()) return std::nullopt;
  const auto days = static_cast<int>((chrono::sys_days{calendar} - text::kDayZero).count());
  return days <= kDayThatNeverWas ? days - 1 : days;
}

bool take_blanks(Scanner& scanner) {
  if (!scanner.take(' ')) return false;
  while (scanner.take(' ')) continue;
  return true;
}

// A month or a day as digits.
bool take_part(Scanner& scanner, int& part) { return scanner.take_number(1, 2, part) != 0; }

bool take_month_name(Scanner& scanner, int& month) {
  for (std::size_t index = 0; index < kMonths.size(); ++index) {
    if (!scanner.take_word(kMonths[index])) continue;
    month = static_cast<int>(index) + 1;
    return true;
  }
  return false;
}

bool take_year(Scanner& scanner, int& year) {
  const std::size_t digits = scanner.take_number(2, 4, year);
  if (digits == 2) year = text::year_of_two_digits(year);
  return digits == 2 || digits == 4;
}

// The year behind `separator`, or the present year, for which a format without the year goes.
bool take_year_or_none(Scanner& scanner, char separator, Date& date) {
  if (scanner.take(separator)) return take_year(scanner, date.year);
  date.format = ValueFormat::kDayMonth;
  return true;
}

// m/d, m/d/yy, m/d/yyyy; `date` comes with the present year, as in the next.
bool take_slashed(Scanner& scanner, Date& date) {
  return take_part(scanner, date.month) && scanner.take('/') && take_part(scanner, date.day) &&
         take_year_or_none(scanner, '/', date);
}

// d-mmm, d-mmm-yy, d-mmm-yyyy
bool take_dashed(Scanner& scanner, Date& date) {
  date.format = ValueFormat::kDayMonthYear;
  return take_part(scanner, date.day) && scanner.take('-') && take_month_name(scanner, date.month) &&
         take_year_or_none(scanner, '-', date);
}

// yyyy-mm-dd
bool take_iso(Scanner& scanner, Date& date) {
  return scanner.take_number(4, 4, date.year) && scanner.take('-') && take_part(scanner, date.month) &&
         scanner.take('-') && take_part(scanner, date.day);
}

// mmm d, yyyy
bool take_written(Scanner& scanner, Date& date) {
  date.format = ValueFormat::kDayMonthYear;
  return take_month_name(scanner, date.month) && take_blanks(scanner) && take_part(scanner, date.day) &&
         scanner.take(',') && take_blanks(scanner) && take_year(scanner, date.year);
}

constexpr std::array kForms = {take_slashed, take_dashed, take_iso, take_written};

// h:mm or h:mm:ss, on the clock of 24 hours or with AM or PM behind a blank. The whole of what is left.
std::optional<Time> take_time(Scanner scanner) {
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (!take_part(scanner, hour) || !scanner.take(':') || !scanner.take_number(2, 2, minute)) return std::nullopt;
  const bool seconds = scanner.take(':');
  if (seconds && !scanner.take_number(2, 2, second)) return std::nullopt;
  const bool halves = take_blanks(scanner);
  if (halves) {
    const bool afternoon = scanner.take_word("PM");
    if ((!afternoon && !scanner.take_word("AM")) || hour < 1 || hour > 12) return std::nullopt;
    hour = hour % 12 + (afternoon ? 12 : 0);
  }
  if (!scanner.at_end() || hour > 23 || minute > 59 || second > 59) return std::nullopt;
  const ValueFormat with_halves = seconds ? ValueFormat::kClockSeconds : ValueFormat::kClock;
  const ValueFormat without = seconds ? ValueFormat::kTimeSeconds : ValueFormat::kTime;
  return Time{(hour * 60 + minute) * 60 + second, halves ? with_halves : without};
}

}  // namespace

std::optional<CellValue> date_value(std::string_view text, int present_year) {
  if (const auto time = take_time(Scanner(text))) {
    return CellValue{CellKind::kNumber, time->second / kSecondsInDay, time->format};
  }
  for (const auto form : kForms) {
    Scanner scanner(text);
    Date date{present_year};
    if (!form(scanner, date)) continue;
    const std::optional<int> day = serial_number(date);
    if (!day) return std::nullopt;
    if (scanner.at_end()) return CellValue{CellKind::kDate, static_cast<double>(*day), date.format};
    if (!take_blanks(scanner)) return std::nullopt;
    const std::optional<Time> time = take_time(scanner);
    if (!time) return std::nullopt;
    return CellValue{CellKind::kDate, *day + time->second / kSecondsInDay, ValueFormat::kDateTime};
  }
  return std::nullopt;
}

}  // namespace trvtrout::spreadsheet
