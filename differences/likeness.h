#pragma once

#include <cstddef>
#include <optional>

#include "vtrfile/value_types.h"

namespace trvtrout::differences {

// How many values two items differ in, when they are so alike that one is the other, changed: a single one, or at most
// half as many as what both hold in common; nothing otherwise.
std::optional<std::size_t> changes_between(vtrfile::Value one, vtrfile::Value other);

}  // namespace trvtrout::differences
