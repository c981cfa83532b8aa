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

std::u16string UserLocale::StampDate(Date date) {
  wchar_t form[] = L"d-mmm-yy hh:mm AM/PM";
  VARIANT value;
  value.vt = VT_DATE;
  value.date = date;
  Bstr text;
  if (FAILED(VarFormat(&value, form, 0, 0, 0, text.out()))) return number_text(date);
  return text.text();
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
