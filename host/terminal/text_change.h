#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/terminal/painter.h"
#include "services/host_services.h"

namespace trvtrout::host {

// A changed text as lines for the terminal: short ones both whole on one line, of long ones the words that differ with
// some around them, of those with several lines the lines that differ. The texts are bytes of the code page.
std::vector<std::string> text_change(Locale& locale, const Painter& painter, std::string_view old_text,
                                     std::string_view new_text);

}  // namespace trvtrout::host
