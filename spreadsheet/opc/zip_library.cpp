#include "spreadsheet/opc/zip_library.h"

#include <dlfcn.h>
#include <string>

#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

[[noreturn]] void raise_missing() {
  const char* const reason = dlerror();
  throw WorkbookError("an .xlsx file needs the library " TRVTROUT_LIBZIP ", which can't be loaded (" +
                      std::string(reason == nullptr ? "no reason given" : reason) +
                      "); install it, or use an .xls workbook");
}

// Never unloaded: objects that it made may still be released.
void* load() {
  void* const library = dlopen(TRVTROUT_LIBZIP, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) raise_missing();
  return library;
}

}  // namespace

void* zip_function(const char* name) {
  static void* const library = load();
  void* const function = dlsym(library, name);
  if (function == nullptr) raise_missing();
  return function;
}

}  // namespace trvtrout::spreadsheet::ooxml
