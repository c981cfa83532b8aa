#pragma once

#include "exchange/texts.h"
#include "platform/locale/code_page.h"

namespace trvtrout::tests {

inline exchange::Texts texts_of(int code_page = 1252) {
  const auto page = std::make_shared<platform::CodePage>(code_page);
  return {code_page, [page](std::string_view bytes) { return page->decode(bytes); },
          [page](const std::u16string& text) { return page->encode(text); }};
}

}  // namespace trvtrout::tests
