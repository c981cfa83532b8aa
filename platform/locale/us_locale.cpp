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

struct Time {
  int hour = 0;
  int minute = 0;
  int second = 0;

  std::optional<int> second_of_day() const {
    if (hour > 23 || minute > 59 || second > 59) return std::nullopt;
    return (hour * 60 + minute) * 60 + second;
  }
};

// h:mm or h:mm:ss, the hour with `hour_digits` digits at least.
std::optional<Time> take_time(Scanner& scanner, std::size_t hour_digits) {
  Time time;
  if (!scanner.take_number(hour_digits, 2, time.hour) || !scanner.take(':')) return std::nullopt;
  if (!scanner.take_number(2, 2, time.minute)) return std::nullopt;
  if (scanner.take(':') && !scanner.take_number(2, 2, time.second)) return std::nullopt;
  return time;
}

std::optional<int> take_general_time(Scanner& scanner) {
  std::optional<Time> time = take_time(scanner, 1);
  if (!time) return std::nullopt;
  scanner.take_blanks();
  const bool morning = scanner.take('A');
  const bool afternoon = !morning && scanner.take('P');
  if (morning || afternoon) {
    if (!scanner.take('M') || time->hour < 1 || time->hour > 12) return std::nullopt;
    time->hour = time->hour % 12 + (afternoon ? 12 : 0);
  }
  return time->second_of_day();
}

std::optional<int> take_iso_time(Scanner& scanner) {
  const std::optional<Time> time = take_time(scanner, 2);
  if (!time) return std::nullopt;
  if (scanner.take('.') && scanner.take_digits().empty()) return std::nullopt;
  scanner.take('Z');
  return time->second_of_day();
}

std::optional<int> take_general_date(Scanner& scanner) {
  int month = 0;
  int day = 0;
  int year = 0;
  if (!scanner.take_number(1, 2, month) || !scanner.take('/')) return std::nullopt;
  if (!scanner.take_number(1, 2, day) || !scanner.take('/')) return std::nullopt;
  const std::size_t digits = scanner.take_number(2, 4, year);
  if (digits == 0) return std::nullopt;
  if (digits == 2) year = text::year_of_two_digits(year);
  return day_number(year, month, day);
}

std::optional<int> take_iso_date(Scanner& scanner) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!scanner.take_number(4, 4, year) || !scanner.take('-')) return std::nullopt;
  if (!scanner.take_number(2, 2, month) || !scanner.take('-')) return std::nullopt;
  if (!scanner.take_number(2, 2, day)) return std::nullopt;
  return day_number(year, month, day);
}

std::optional<Moment> parse_general(Scanner scanner) {
  Scanner time_alone = scanner;
  if (const auto second = take_general_time(time_alone); second && time_alone.at_end()) return Moment{0, *second};
  const auto day = take_general_date(scanner);
  if (!day) return std::nullopt;
  if (scanner.at_end()) return Moment{*day, 0};
  if (!scanner.take_blanks()) return std::nullopt;
  const auto second = take_general_time(scanner);
  if (!second || !scanner.at_end()) return std::nullopt;
  return Moment{*day, *second};
}

std::optional<Moment> parse_iso(Scanner scanner) {
  const auto day = take_iso_date(scanner);
  if (!day) return std::nullopt;
  if (scanner.at_end()) return Moment{*day, 0};
  if (!scanner.take('T') && !scanner.take(' ')) return std::nullopt;
  const auto second = take_iso_time(scanner);
  if (!second || !scanner.at_end()) return std::nullopt;
  return Moment{*day, *second};
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
  auto moment = parse_general(Scanner(ascii));
  if (!moment) moment = parse_iso(Scanner(ascii));
  if (!moment) return std::nullopt;
  return moment->serial();
}

}  // namespace trvtrout::platform
