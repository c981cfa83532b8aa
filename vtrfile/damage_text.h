#pragma once

#include <string>

#include "vtrfile/part_read.h"
#include "vtrfile/read_error.h"

namespace trvtrout::vtrfile {

// Where the reading of a damaged file broke off, for people.
std::string damage_text(const ReadError& damage);
// Which bytes nothing is known about, for people.
std::string gap_text(const Gap& gap);

}  // namespace trvtrout::vtrfile
