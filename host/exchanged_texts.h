#pragma once

#include <memory>

#include "exchange/texts.h"
#include "platform/locale/code_page.h"

namespace trvtrout::host {

// The texts of files by this code page. Raises std::invalid_argument for one that the machine doesn't have.
inline exchange::Texts texts_of(int code_page) {
  const auto page = std::make_shared<const platform::CodePage>(code_page);
  return {code_page, [page](std::string_view bytes) { return page->decode(bytes); },
          [page](const std::u16string& text) { return page->encode(text); }};
}

}  // namespace trvtrout::host
