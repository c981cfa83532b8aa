#include "windows/user_locale.h"

#include "windows/code_page.h"
#include "windows/errors.h"
#include "windows/variant.h"

namespace trvtrout::windows {
namespace {

std::u16string number_text(double number) {
  Bstr text;
  require(VarBstrFromR8(number, LOCALE_USER_DEFAULT, 0, text.out()), "can't show a number");
  return text.text();
}

std::string two_digits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }
std::u16string widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

Date UserLocale::Now() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  now.wMilliseconds = 0;
  Date date = 0;
  SystemTimeToVariantTime(&now, &date);
  return date;
}

std::u16string UserLocale::GeneralDate(Date date) {
  Bstr text;
  if (FAILED(VarBstrFromDate(date, LOCALE_USER_DEFAULT, 0, text.out()))) return number_text(date);
  return text.text();
}

// Put together here: the runtime's own formatting isn't the same everywhere with a clock of twelve hours.
std::u16string UserLocale::StampDate(Date date) {
  SYSTEMTIME moment;
  Bstr month;
  if (!VariantTimeToSystemTime(date, &moment) || FAILED(VarMonthName(moment.wMonth, TRUE, 0, month.out()))) {
    return number_text(date);
  }
  const std::string day = std::to_string(moment.wDay) + "-";
  const std::string rest = "-" + two_digits(moment.wYear % 100) + " " + two_digits((moment.wHour + 11) % 12 + 1) + ":" +
                           two_digits(moment.wMinute) + (moment.wHour < 12 ? " AM" : " PM");
  return widened(day) + month.text() + widened(rest);
}

std::optional<Date> UserLocale::ParseDate(const std::u16string& text) {
  std::u16string copy = text;
  Date date = 0;
  if (FAILED(VarDateFromStr(wide(copy), LOCALE_USER_DEFAULT, 0, &date))) return std::nullopt;
  return date;
}

std::string UserLocale::Encode(const std::u16string& text) { return to_code_page(text); }
std::u16string UserLocale::Decode(std::string_view bytes) { return from_code_page(bytes); }

}  // namespace trvtrout::windows
