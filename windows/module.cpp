#include "windows/module.h"

#include <atomic>

#include "windows/errors.h"

// The linker's name for where the library begins in memory.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace trvtrout::windows {
namespace {

std::atomic<long> uses = 0;

}  // namespace

ModuleUse::ModuleUse() noexcept { ++uses; }
ModuleUse::~ModuleUse() { --uses; }
bool ModuleUse::any() noexcept { return uses != 0; }
void ModuleUse::lock(bool locked) noexcept { uses += locked ? 1 : -1; }

void stay_loaded() noexcept {
  HMODULE module;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<const wchar_t*>(&__ImageBase), &module);
}

std::u16string module_path() {
  std::u16string path(MAX_PATH, u'\0');
  for (;;) {
    const DWORD room = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameW(reinterpret_cast<HMODULE>(&__ImageBase), wide(path), room);
    if (length == 0) require(HRESULT_FROM_WIN32(GetLastError()), "can't tell where the library is");
    path.resize(length < room ? length : path.size() * 2);
    if (length < room) return path;
  }
}

ComPtr<ITypeLib> load_type_library() {
  ComPtr<ITypeLib> library;
  require(LoadTypeLibEx(wide(module_path()), REGKIND_NONE, &library), "can't load the type library");
  return library;
}

}  // namespace trvtrout::windows
