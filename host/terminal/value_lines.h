#pragma once

#include <functional>
#include <string>

#include "services/host_services.h"
#include "vtrfile/value_types.h"

namespace trvtrout::host {

// Calls tell(line) for each value within `value` that holds something: its path below `path`, with the keys of items in
// place of their numbers, and the value; of a text with several lines each. A line says nothing of what stands before
// it in a list, so that an item more or less changes no other line.
void for_each_line(Locale& locale, vtrfile::Value value, const std::function<void(const std::string& line)>& tell,
                   const std::string& path = {});

}  // namespace trvtrout::host
