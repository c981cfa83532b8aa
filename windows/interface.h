#pragma once

// The interface as the definition language made it, behind the platform's headers.
// clang-format off
#include "windows/system.h"
#include <TrVtrOut.h>
// clang-format on
