#pragma once

#include "services/host_services.h"

namespace trvtrout::windows {

// Clock of the machine, date forms and month names of the user's settings, the system's code page.
class UserLocale : public Locale {
 public:
  Date Now() override;
  // A value that is no date is shown as a number, here and in StampDate.
  std::u16string GeneralDate(Date date) override;
  std::u16string StampDate(Date date) override;
  std::optional<Date> ParseDate(const std::u16string& text) override;
  std::string Encode(const std::u16string& text) override;
  std::u16string Decode(std::string_view bytes) override;
};

}  // namespace trvtrout::windows
