#include "host/old_format.h"

#include <algorithm>

#include "component/parts.h"
#include "host/machine.h"
#include "vtrfile/document.h"
#include "vtrfile/format_version.h"

namespace trvtrout::host {
namespace {

// The parts whose records stand in the schema.
constexpr std::string_view kInSchema[] = {"table", "field", "lookup"};

// "a, b and c"
std::string enumeration(const std::vector<std::string>& words) {
  std::string text;
  for (std::size_t at = 0; at < words.size(); ++at) {
    if (at > 0) text += at + 1 == words.size() ? " and " : ", ";
    text += words[at];
  }
  return text;
}

}  // namespace

void OldFormat::look_at(const std::string& file, const TarvelVtrOut_InOut& utility) {
  const bool is_old = vtrfile::classify(utility.CurrentSlots().Header->Version.bytes()) == vtrfile::FormatClass::kOld;
  if (is_old && std::ranges::find(files_, file) == files_.end()) files_.push_back(file);
}

PartSelection OldFormat::select(const std::vector<std::string>& names, bool all_or_none) const {
  PartSelection selection;
  std::vector<std::string> asked, told;
  for (const Part& part : document_parts()) {
    const std::string name = part.name;
    if (!names.empty() && std::ranges::find(names, name) == names.end()) continue;
    asked.push_back(name);
    if (files_.empty() || std::ranges::find(kInSchema, name) != std::end(kInSchema)) {
      selection.compared.push_back(name);
    } else {
      selection.left_out.push_back(name);
      // What is compared of a product.
      told.push_back(name == "product" ? "product (include files, modules)" : name);
    }
  }
  if (told.empty()) return selection;
  const bool none = all_or_none && !selection.compared.empty();
  complain(enumeration(files_) + ": the old format, " + std::string(vtrfile::kOldFormatVersion.text()) +
           ", doesn't let " + enumeration(told) + " be compared" +
           (none ? ", so nothing was (--part can leave them out)" : "") +
           "; `vtrout recover` makes a current file of such a one");
  if (none) selection = {{}, asked};
  return selection;
}

}  // namespace trvtrout::host
