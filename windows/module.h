#pragma once

#include <string>

#include "windows/system.h"

// The library itself.
namespace trvtrout::windows {

// The name by which hosts create the class.
inline constexpr std::u16string_view kProgramId = u"TrVtrOut.TarvelVtrOut_InOut";

// Keeps the library loaded while it lives: a member of whatever a host holds.
class ModuleUse {
 public:
  ModuleUse() noexcept;
  ~ModuleUse();
  ModuleUse(const ModuleUse&) = delete;
  ModuleUse& operator=(const ModuleUse&) = delete;
  static bool any() noexcept;
  // By a host that holds nothing; each lock takes one release.
  static void lock(bool locked) noexcept;
};

// Keeps the library loaded until the process ends. What a thread holds of its own (SchemaOld, of each apartment) is
// freed when the thread ends, by code of the library, which has to be there then; the compiler's own care for that lets
// go of the library from within it.
void stay_loaded() noexcept;

// Where the library's file stands. Raises ServiceError.
std::u16string module_path();

// The type library that is a part of this one. Raises ServiceError.
ComPtr<ITypeLib> load_type_library();

}  // namespace trvtrout::windows
