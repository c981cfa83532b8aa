#pragma once

#include <string>
#include <string_view>

#include "services/host_services.h"
#include "vtrfile/elements.h"

namespace trvtrout {

// The heads of the four script columns of a definition.
inline constexpr std::string_view kScriptHeads =
    ",VBS Definition Load,VBS Post Execution,VBS Name in Run Script Dialog,VBS Include file";

// The script texts of a definition as cells: the elements 0 to 3 of `vbs_info` joined by commas; four commas, one cell
// more, for Empty. Raises std::runtime_error for anything else, with the words for `whose` they are.
std::string script_text(vtrfile::Var vbs_info, Locale& locale, const std::string& whose);

}  // namespace trvtrout
