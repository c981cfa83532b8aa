#include "host/parts.h"

#include <algorithm>
#include <iterator>

#include "host/machine.h"

namespace trvtrout::host {
namespace {

using Utility = TarvelVtrOut_InOut;

constexpr Part kParts[] = {
    {"product", u"Product", &Utility::ASCII_Output_Product, &Utility::Compare_Product},
    {"table", u"Tables", &Utility::ASCII_Output_Table, &Utility::Compare_Table},
    {"field", u"Fields", &Utility::ASCII_Output_Field, &Utility::Compare_Field},
    {"tree", u"Tree", &Utility::ASCII_Output_Tree, &Utility::Compare_Tree},
    {"lookup", u"Lookups", &Utility::ASCII_Output_Lookup, &Utility::Compare_Lookup},
    {"ctrltag", u"Control Tags", &Utility::ASCII_Output_CtrlTag, &Utility::Compare_CtrlTag},
    {"lang", u"Languages", &Utility::ASCII_Output_Lang, &Utility::Compare_Lang},
    {"dsend", u"Data Send", &Utility::ASCII_Output_DSend, &Utility::Compare_DSend},
};

}  // namespace

std::vector<std::string> part_names() {
  std::vector<std::string> names;
  std::ranges::transform(kParts, std::back_inserter(names), &Part::name);
  return names;
}

std::vector<Part> parts_named(const std::vector<std::string>& names) {
  std::vector<Part> parts;
  std::ranges::copy_if(kParts, std::back_inserter(parts), [&](const Part& part) {
    return names.empty() || std::ranges::find(names, part.name) != names.end();
  });
  return parts;
}

bool can_name_reports(const std::string& file) {
  if (file.find('.', file.find_last_of('/') + 1) != std::string::npos) return true;
  complain(file + ": the file's name has no full stop, so its reports can't be named; give it an extension");
  return false;
}

}  // namespace trvtrout::host
