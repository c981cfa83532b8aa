#include "spreadsheet/opc/zip_library.h"

#include <string>
#include <windows.h>

#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

[[noreturn]] void raise_missing() {
  throw WorkbookError("an .xlsx file needs the library " TRVTROUT_LIBZIP ", which can't be loaded (error " +
                      std::to_string(GetLastError()) + "); put it beside the program, or use an .xls workbook");
}

// Never unloaded: objects that it made may still be released.
HMODULE load() {
  const HMODULE library = LoadLibraryA(TRVTROUT_LIBZIP);
  if (!library) raise_missing();
  return library;
}

}  // namespace

void* zip_function(const char* name) {
  static const HMODULE library = load();
  const FARPROC function = GetProcAddress(library, name);
  if (!function) raise_missing();
  return reinterpret_cast<void*>(function);
}

}  // namespace trvtrout::spreadsheet::ooxml
