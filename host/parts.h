#pragma once

#include <string>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"

namespace trvtrout::host {

// One of the eight parts of a document, by the name that --part takes, with the operations on it.
struct Part {
  const char* name;
  const char16_t* sheet_name;  // in a workbook
  Boolean (TarvelVtrOut_InOut::*report)(std::u16string&, std::u16string&, Boolean&);
  Boolean (TarvelVtrOut_InOut::*compare)(std::u16string&, std::u16string&, std::u16string&);
};

std::vector<std::string> part_names();

// The parts with these names in the order of the reports, all when no name is given.
std::vector<Part> parts_named(const std::vector<std::string>& names);

// Whether a report beside the file can have a name: it is made of what stands in front of the first full stop. Tells
// the user when not.
bool can_name_reports(const std::string& file);

}  // namespace trvtrout::host
