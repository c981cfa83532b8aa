#include "windows/errors.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "text/utf8.h"

namespace trvtrout::windows {
namespace {

struct ErrorRow {
  DWORD error;
  ErrorNumber number;
};

constexpr ErrorRow kErrors[] = {
    {ERROR_FILE_NOT_FOUND, ErrorNumber::kNoSuchFile},
    {ERROR_PATH_NOT_FOUND, ErrorNumber::kNoSuchFolder},
    {ERROR_BAD_NETPATH, ErrorNumber::kNoSuchFolder},
    {ERROR_INVALID_DRIVE, ErrorNumber::kNoSuchFolder},
    {ERROR_SHARING_VIOLATION, ErrorNumber::kFileHeld},
    {ERROR_LOCK_VIOLATION, ErrorNumber::kFileHeld},
    {ERROR_ACCESS_DENIED, ErrorNumber::kFileHeld},
    {ERROR_WRITE_PROTECT, ErrorNumber::kFileHeld},
    {ERROR_DIRECTORY, ErrorNumber::kPathAccess},
    {ERROR_FILE_EXISTS, ErrorNumber::kFileExists},
    {ERROR_ALREADY_EXISTS, ErrorNumber::kFileExists},
    {ERROR_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_HANDLE_DISK_FULL, ErrorNumber::kDiskFull},
    {ERROR_FILE_TOO_LARGE, ErrorNumber::kDiskFull},
    {ERROR_TOO_MANY_OPEN_FILES, ErrorNumber::kTooManyFiles},
    {ERROR_INVALID_NAME, ErrorNumber::kBadFileName},
    {ERROR_BAD_PATHNAME, ErrorNumber::kBadFileName},
    {ERROR_FILENAME_EXCED_RANGE, ErrorNumber::kBadFileName},
};

}  // namespace

ErrorNumber number_of_error(DWORD error) {
  const auto* row = std::find_if(std::begin(kErrors), std::end(kErrors),
                                 [error](const ErrorRow& candidate) { return candidate.error == error; });
  return row == std::end(kErrors) ? ErrorNumber::kDeviceError : row->number;
}

ErrorNumber number_of_result(HRESULT result) {
  // A facility whose codes are the numbers themselves.
  if (HRESULT_FACILITY(result) == FACILITY_CONTROL) return static_cast<ErrorNumber>(HRESULT_CODE(result));
  if (HRESULT_FACILITY(result) == FACILITY_WIN32) return number_of_error(HRESULT_CODE(result));
  return ErrorNumber::kAutomation;
}

std::string words_for(DWORD error_or_result) {
  wchar_t buffer[512];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                      error_or_result, 0, buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
  std::wstring_view words(buffer, length);
  while (!words.empty() && (words.back() <= L' ' || words.back() == L'.')) words.remove_suffix(1);
  return words.empty() ? "error " + std::to_string(error_or_result) : text::to_utf8(narrow(words));
}

void raise_file_error(DWORD error, const char* verb, const std::u16string& path) {
  throw ServiceError(number_of_error(error),
                     std::string("can't ") + verb + " \"" + text::to_utf8(path) + "\": " + words_for(error));
}

void require(HRESULT result, const std::string& what) {
  if (SUCCEEDED(result)) return;
  if (result == E_OUTOFMEMORY) throw std::bad_alloc();
  throw ServiceError(number_of_result(result), what + ": " + words_for(static_cast<DWORD>(result)));
}

}  // namespace trvtrout::windows
