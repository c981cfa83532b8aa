#include "reports/script_text.h"

#include "reports/cells.h"
#include "vtrfile/variant.h"

namespace trvtrout {

std::string script_text(vtrfile::Var vbs_info, Locale& locale) {
  constexpr int kScripts = 4;
  if (vbs_info.empty()) return std::string(kScripts, ',');
  std::string text;
  for (int script = 0; script < kScripts; ++script) {
    if (script > 0) text += ',';
    append_variant(text, vtrfile::element_of(vbs_info, script), locale);
  }
  return text;
}

}  // namespace trvtrout
