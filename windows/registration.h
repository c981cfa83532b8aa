#pragma once

#include "windows/system.h"

namespace trvtrout::windows {

// Writes class, interface and type library into the registry: for the machine, or for the user alone where that
// can't be done, most often because the rights are missing.
HRESULT register_component() noexcept;

// Takes them out again, for the user and for the machine; what another build of the library (64 or 32 bits) needs stays
// until that goes. A failure when it's registered for the machine and the rights are missing.
HRESULT unregister_component() noexcept;

}  // namespace trvtrout::windows
