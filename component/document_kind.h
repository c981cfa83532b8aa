#pragma once

#include <string>

#include "services/host_services.h"

namespace trvtrout {

// Whether the file begins as a VTR file does: with a header whose version is spelled as versions are ("01.02.00"),
// known or not. Raises ServiceError when the file can't be read.
bool begins_as_document(Files& files, const std::u16string& path);

}  // namespace trvtrout
