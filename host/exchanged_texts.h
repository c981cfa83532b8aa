#pragma once

#include <memory>

#include "exchange/texts.h"
#include "platform/locale/code_page.h"

namespace trvtrout::host {

// The texts of files by this code page. Raises std::invalid_argument for one that the machine doesn't have.
inline exchange::Texts texts_of(int code_page) {
  return {code_page, std::make_shared<const platform::CodePage>(code_page)};
}

}  // namespace trvtrout::host
