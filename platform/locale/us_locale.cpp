#include "platform/locale/us_locale.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>

#include "text/calendar.h"
#include "text/scanner.h"

namespace trvtrout::platform {
namespace {

namespace chrono = std::chrono;
using text::kDayZero;
using text::Scanner;

constexpr int kFirstDay = -657434;  // 1 January 100
constexpr int kLastDay = 2958465;   // 31 December 9999
constexpr int kSecondsInDay = 24 * 60 * 60;

constexpr std::array<std::string_view, 12> kMonthNames = {"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                                          "MAY",       "JUNE",     "JULY",     "AUGUST",
                                                          "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

struct Moment {
  int day;     // since kDayZero
  int second;  // of the day

  chrono::year_month_day calendar() const { return kDayZero + chrono::days{day}; }
  int hour() const { return second / 3600; }
  int minute() const { return second / 60 % 60; }
  // Before day zero, too, the time counts away from zero.
  Date serial() const {
    const double time = static_cast<double>(second) / kSecondsInDay;
    return day < 0 ? day - time : day + time;
  }
};

std::optional<Moment> split(Date date) {
  // Written so that NaN is refused.
  if (!(date > kFirstDay - 1 && date < kLastDay + 1)) return std::nullopt;
  const double whole = std::trunc(date);
  Moment moment{static_cast<int>(whole), static_cast<int>(std::lround(std::fabs(date - whole) * kSecondsInDay))};
  if (moment.second == kSecondsInDay) moment = {moment.day + 1, 0};
  if (moment.day < kFirstDay || moment.day > kLastDay) return std::nullopt;
  return moment;
}

std::optional<int> day_number(int year, int month, int day) {
  const chrono::year_month_day date = chrono::year{year} / month / day;
  if (year < 100 || !date.ok()) return std::nullopt;
  return static_cast<int>((chrono::sys_days{date} - kDayZero).count());
}

std::string number_text(double number) {
  std::array<char, 32> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
  return {buffer.data(), end};
}

std::string two_digits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }
int hour_of_clock(const Moment& moment) { return (moment.hour() + 11) % 12 + 1; }
std::string half_of_day(const Moment& moment) { return moment.hour() < 12 ? " AM" : " PM"; }

std::string date_text(const Moment& moment) {
  const auto date = moment.calendar();
  return std::to_string(static_cast<unsigned>(date.month())) + "/" + std::to_string(static_cast<unsigned>(date.day())) +
         "/" + std::to_string(static_cast<int>(date.year()));
}

std::string time_text(const Moment& moment) {
  return std::to_string(hour_of_clock(moment)) + ":" + two_digits(moment.minute()) + ":" +
         two_digits(moment.second % 60) + half_of_day(moment);
}

std::string general_text(const Moment& moment) {
  if (moment.day == 0) return time_text(moment);
  if (moment.second == 0) return date_text(moment);
  return date_text(moment) + " " + time_text(moment);
}

std::string stamp_text(const Moment& moment) {
  const auto date = moment.calendar();
  return std::to_string(static_cast<unsigned>(date.day())) + "-" + kMonths[static_cast<unsigned>(date.month()) - 1] +
         "-" + two_digits(static_cast<int>(date.year()) % 100) + " " + two_digits(hour_of_clock(moment)) + ":" +
         two_digits(moment.minute()) + half_of_day(moment);
}

// How a text spells a date: which of its three parts is which.
using Order = std::array<int, 3>;  // places of year, month and day
constexpr Order kMonthDayYear = {2, 0, 1}, kDayMonthYear = {2, 1, 0}, kYearMonthDay = {0, 1, 2};

struct Number {
  int value = 0;
  std::size_t digits = 0;
};

bool take_number(Scanner& scanner, Number& number) {
  number.digits = scanner.take_number(1, 4, number.value);
  return number.digits != 0;
}

// Two digits are a year of this century or the last one, more are the year itself.
int year_of(const Number& number) { return number.digits > 2 ? number.value : text::year_of_two_digits(number.value); }

bool take_month_name(Scanner& scanner, int& month) {
  for (std::size_t index = 0; index < kMonths.size(); ++index) {
    if (!scanner.take_word(kMonthNames[index]) && !scanner.take_word(kMonthNames[index].substr(0, 3))) continue;
    month = static_cast<int>(index) + 1;
    return true;
  }
  return false;
}

// What may stand between the parts of a date: a mark, blanks, or both.
bool take_separator(Scanner& scanner, std::string_view marks) {
  const bool blanks = scanner.take_blanks();
  for (const char mark : marks) {
    if (!scanner.take(mark)) continue;
    scanner.take_blanks();
    return true;
  }
  return blanks;
}

std::optional<int> day_of(const std::array<Number, 3>& parts, const Order& order) {
  const auto [year_at, month_at, day_at] = order;
  const auto at = [&](int place) -> const Number& { return parts[static_cast<std::size_t>(place)]; };
  if (at(month_at).digits > 2 || at(day_at).digits > 2) return std::nullopt;
  return day_number(year_of(at(year_at)), at(month_at).value, at(day_at).value);
}

// 6/2/2004, 6-2-2004; 13/6/2004, which has no thirteenth month; 2004/06/02.
std::optional<int> take_digits_date(Scanner& scanner) {
  std::array<Number, 3> parts;
  if (!take_number(scanner, parts[0])) return std::nullopt;
  const char mark = scanner.take('/') ? '/' : '-';
  if (mark == '-' && !scanner.take('-')) return std::nullopt;
  if (!take_number(scanner, parts[1]) || !scanner.take(mark) || !take_number(scanner, parts[2])) return std::nullopt;
  if (parts[0].digits == 4) return day_of(parts, kYearMonthDay);
  const auto usual = day_of(parts, kMonthDayYear);
  return usual ? usual : day_of(parts, kDayMonthYear);
}

// 2-Jun-2004, 2 June 2004.
std::optional<int> take_day_first(Scanner& scanner) {
  Number day, year;
  int month = 0;
  if (!take_number(scanner, day) || day.digits > 2 || !take_separator(scanner, "-/")) return std::nullopt;
  if (!take_month_name(scanner, month) || !take_separator(scanner, "-/,")) return std::nullopt;
  if (!take_number(scanner, year)) return std::nullopt;
  return day_number(year_of(year), month, day.value);
}

// June 2, 2004; Jun-2-2004.
std::optional<int> take_month_first(Scanner& scanner) {
  Number day, year;
  int month = 0;
  if (!take_month_name(scanner, month) || !take_separator(scanner, "-/")) return std::nullopt;
  if (!take_number(scanner, day) || day.digits > 2 || !take_separator(scanner, "-/,")) return std::nullopt;
  if (!take_number(scanner, year)) return std::nullopt;
  return day_number(year_of(year), month, day.value);
}

constexpr std::array kDateForms = {take_digits_date, take_day_first, take_month_first};

std::optional<int> take_date(Scanner& scanner) {
  for (const auto form : kDateForms) {
    Scanner ahead = scanner;
    const auto day = form(ahead);
    if (!day) continue;
    scanner = ahead;
    return day;
  }
  return std::nullopt;
}

// h:mm or h:mm:ss, with AM or PM or on the clock of 24 hours; with AM or PM the hour alone is enough.
std::optional<int> take_time(Scanner& scanner) {
  int hour = 0, minute = 0, second = 0;
  if (!scanner.take_number(1, 2, hour)) return std::nullopt;
  const bool minutes = scanner.take(':');
  if (minutes && !scanner.take_number(1, 2, minute)) return std::nullopt;
  if (minutes && scanner.take(':') && !scanner.take_number(1, 2, second)) return std::nullopt;
  Scanner behind = scanner;
  behind.take_blanks();
  const bool afternoon = behind.take_word("PM");
  if (afternoon || behind.take_word("AM")) {
    if (hour < 1 || hour > 12) return std::nullopt;
    hour = hour % 12 + (afternoon ? 12 : 0);
    scanner = behind;
  } else if (!minutes) {
    return std::nullopt;
  }
  if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
  return (hour * 60 + minute) * 60 + second;
}

// A date, a time, or both in either order.
std::optional<Moment> parse_moment(Scanner scanner) {
  std::optional<int> day, second;
  while (!scanner.at_end()) {
    Scanner ahead = scanner;
    const bool taken = (!day && (day = take_date(ahead))) || (!second && (second = take_time(ahead = scanner)));
    if (!taken) return std::nullopt;
    scanner = ahead;
    if (!scanner.at_end() && !scanner.take_blanks()) return std::nullopt;
  }
  if (!day && !second) return std::nullopt;
  return Moment{day.value_or(0), second.value_or(0)};
}

// Empty for a text with anything but ASCII in it, which no date has.
std::string trimmed_ascii(const std::u16string& text) {
  constexpr const char16_t* kBlanks = u" \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::u16string::npos) return {};
  std::string ascii;
  for (std::size_t at = first; at <= text.find_last_not_of(kBlanks); ++at) {
    if (text[at] >= 0x80) return {};
    ascii += static_cast<char>(text[at]);
  }
  return ascii;
}

std::u16string widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

Date UsLocale::Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const auto day = day_number(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  const int leap_second_too_many = local.tm_sec / 60;
  return Moment{day.value_or(0), (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec - leap_second_too_many}
      .serial();
}

std::u16string UsLocale::GeneralDate(Date date) {
  const auto moment = split(date);
  return widened(moment ? general_text(*moment) : number_text(date));
}

std::u16string UsLocale::StampDate(Date date) {
  const auto moment = split(date);
  return widened(moment ? stamp_text(*moment) : number_text(date));
}

std::optional<Date> UsLocale::ParseDate(const std::u16string& text) {
  const std::string ascii = trimmed_ascii(text);
  const auto moment = parse_moment(Scanner(ascii));
  if (!moment) return std::nullopt;
  return moment->serial();
}

}  // namespace trvtrout::platform
