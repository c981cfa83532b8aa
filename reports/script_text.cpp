#include "reports/script_text.h"

#include <stdexcept>

#include "reports/cells.h"
#include "vtrfile/variant.h"

namespace trvtrout {

std::string script_text(vtrfile::Var vbs_info, Locale& locale, const std::string& whose) {
  constexpr int kScripts = 4;
  if (vbs_info.empty()) return std::string(kScripts, ',');
  std::string text;
  try {
    for (int script = 0; script < kScripts; ++script) {
      if (script > 0) text += ',';
      append_variant(text, vtrfile::element_of(vbs_info, script), locale);
    }
  } catch (const vtrfile::SubscriptOutOfRange&) {
    throw std::runtime_error("the scripts (VBSInfo) of " + whose + " aren't four values, numbered from 0 to 3");
  }
  return text;
}

}  // namespace trvtrout
