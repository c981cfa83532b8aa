#pragma once

#include <memory>

#include "services/host_services.h"

namespace trvtrout::windows {

// A new "Scripting.FileSystemObject" of the machine. Raises ServiceError when there is none.
std::unique_ptr<FileSystemObject> create_scripting_files();

}  // namespace trvtrout::windows
