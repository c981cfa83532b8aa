#pragma once

#include <string>

#include "services/host_services.h"
#include "windows/system.h"

namespace trvtrout::windows {

// The class's number for an error of the system's functions, and for a result of the component runtime.
ErrorNumber number_of_error(DWORD error);
ErrorNumber number_of_result(HRESULT result);

// The system's words for it, without a line end, in UTF-8.
std::string words_for(DWORD error_or_result);

// Raises ServiceError: "can't `verb` "path": reason".
[[noreturn]] void raise_file_error(DWORD error, const char* verb, const std::u16string& path);

// Raises ServiceError for a result that is a failure, bad_alloc where there was no memory. `what`: what was tried.
void require(HRESULT result, const std::string& what);

}  // namespace trvtrout::windows
