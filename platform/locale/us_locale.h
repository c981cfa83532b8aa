#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/locale/code_page.h"
#include "services/host_services.h"

namespace trvtrout::platform {

// Clock of the machine, date forms of the United States, one code page.
class UsLocale : public Locale {
 public:
  // Raises std::invalid_argument for a code page that the machine doesn't have.
  explicit UsLocale(int code_page = 1252) : code_page_(shared_code_page(code_page)) {}

  Date Now() override;
  // A value that is no date of the years 100 to 9999 is shown as a number, here and in StampDate.
  std::u16string GeneralDate(Date date) override;
  std::u16string StampDate(Date date) override;
  std::optional<Date> ParseDate(const std::u16string& text) override;
  std::string Encode(const std::u16string& text) override { return code_page_->encode(text); }
  std::u16string Decode(std::string_view bytes) override { return code_page_->decode(bytes); }

 private:
  std::shared_ptr<const CodePage> code_page_;
};

}  // namespace trvtrout::platform
