#pragma once

#include <string>

#include "differences/differences.h"
#include "services/host_services.h"

namespace trvtrout::host {

// A place in a document in words that its users know.
struct Label {
  std::string section;  // its tag
  std::string list;     // the innermost list on the way ("Tables T003 / Fields"), the record that has it in front
  std::string item;     // the innermost item ("Tables T003 / Fields F004"), or the record of a section; may be empty
  std::string member;   // from there to the value ("Filter/FilterText"); empty for an item
};

// Items stand under their keys, those without one as "#" and their place.
Label label_of(Locale& locale, const differences::Place& place);

}  // namespace trvtrout::host
