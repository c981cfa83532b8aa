#pragma once

#include "exchange/texts.h"
#include "platform/locale/code_page.h"

namespace trvtrout::host {

// The texts of files by this code page. Raises std::invalid_argument for one that the machine doesn't have.
inline exchange::Texts texts_of(int code_page) { return {code_page, platform::shared_code_page(code_page)}; }

}  // namespace trvtrout::host
