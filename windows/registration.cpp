#include "windows/registration.h"

#include <string>
#include <vector>

#include "windows/module.h"
#include "windows/object.h"

namespace trvtrout::windows {
namespace {

#ifdef _WIN64
constexpr std::u16string_view kPlatform = u"win64";
constexpr REGSAM kOtherView = KEY_WOW64_32KEY;
#else
constexpr std::u16string_view kPlatform = u"win32";
constexpr REGSAM kOtherView = KEY_WOW64_64KEY;
#endif

// The runtime's own marshaler, which goes by the type library.
constexpr std::u16string_view kMarshaler = u"{00020424-0000-0000-C000-000000000046}";
constexpr std::u16string_view kVersion = u"1.0";

std::u16string braced(const GUID& id) {
  wchar_t text[40];
  StringFromGUID2(id, text, 40);
  return std::u16string(narrow(text));
}

// The keys that are this component's, below Software\Classes.
struct Keys {
  std::u16string program = std::u16string(kProgramId);
  std::u16string class_id = braced(CLSID_TarvelVtrOut_InOut);
  std::u16string library_id = braced(LIBID_TrVtrOut);
  std::u16string class_key = u"CLSID\\" + class_id;
  std::u16string interface_key = u"Interface\\" + braced(IID__TarvelVtrOut_InOut);
  std::u16string library_key = u"TypeLib\\" + library_id;
  std::u16string library_version = library_key + u"\\" + std::u16string(kVersion);
  std::u16string library_platform = library_version + u"\\0\\" + std::u16string(kPlatform);
};

struct Value {
  std::u16string key;
  std::u16string name;  // empty for the key's own value
  std::u16string text;
};

std::vector<Value> values(const Keys& keys) {
  const std::u16string path = module_path();
  const std::u16string version(kVersion), marshaler(kMarshaler);
  return {
      {keys.program, u"", keys.program},
      {keys.program + u"\\Clsid", u"", keys.class_id},
      {keys.class_key, u"", keys.program},
      {keys.class_key + u"\\InprocServer32", u"", path},
      {keys.class_key + u"\\InprocServer32", u"ThreadingModel", u"Apartment"},
      {keys.class_key + u"\\ProgID", u"", keys.program},
      {keys.class_key + u"\\Programmable", u"", u""},
      {keys.class_key + u"\\TypeLib", u"", keys.library_id},
      {keys.class_key + u"\\VERSION", u"", version},
      {keys.interface_key, u"", u"_TarvelVtrOut_InOut"},
      {keys.interface_key + u"\\ProxyStubClsid32", u"", marshaler},
      {keys.interface_key + u"\\TypeLib", u"", keys.library_id},
      {keys.interface_key + u"\\TypeLib", u"Version", version},
      {keys.library_version, u"", u"Tarvel Foundry VTR Output utility"},
      {keys.library_version + u"\\FLAGS", u"", u"0"},
      {keys.library_platform, u"", path},
  };
}

// Software\Classes of the machine or of the user.
class Classes {
 public:
  explicit Classes(HKEY root) : root_(root) {}

  LSTATUS write(const Value& value) const {
    HKEY key = nullptr;
    const LSTATUS made =
        RegCreateKeyExW(root_, wide(below(value.key)), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &key, nullptr);
    if (made != ERROR_SUCCESS) return made;
    const auto size = static_cast<DWORD>((value.text.size() + 1) * sizeof(char16_t));
    const LSTATUS set = RegSetValueExW(key, value.name.empty() ? nullptr : wide(value.name), 0, REG_SZ,
                                       reinterpret_cast<const BYTE*>(value.text.c_str()), size);
    RegCloseKey(key);
    return set;
  }
  bool has(const std::u16string& name, REGSAM view = 0) const {
    HKEY key = nullptr;
    if (RegOpenKeyExW(root_, wide(below(name)), 0, KEY_READ | view, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
  }
  // With all that is below it. A key that isn't there is no failure.
  LSTATUS remove(const std::u16string& name) const {
    const LSTATUS removed = RegDeleteTreeW(root_, wide(below(name)));
    return removed == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : removed;
  }

 private:
  static std::u16string below(const std::u16string& name) { return u"Software\\Classes\\" + name; }

  HKEY root_;
};

LSTATUS unregister_from(const Classes& classes) {
  const Keys keys;
  LSTATUS result = ERROR_SUCCESS;
  const auto remove = [&](const std::u16string& key) {
    if (const LSTATUS removed = classes.remove(key); removed != ERROR_SUCCESS) result = removed;
  };
  for (const std::u16string* key : {&keys.class_key, &keys.interface_key, &keys.library_platform}) remove(*key);
  // The other build finds the program's name and the type library under the same keys. Where there is one view alone,
  // it shows that this build's class has gone.
  if (classes.has(keys.class_key, kOtherView)) return result;
  for (const std::u16string* key : {&keys.program, &keys.library_key}) remove(*key);
  return result;
}

LSTATUS register_in(const Classes& classes) {
  for (const Value& value : values(Keys())) {
    const LSTATUS written = classes.write(value);
    if (written == ERROR_SUCCESS) continue;
    unregister_from(classes);
    return written;
  }
  return ERROR_SUCCESS;
}

}  // namespace

HRESULT register_component() noexcept {
  return at_boundary([] {
    LSTATUS result = register_in(Classes(HKEY_LOCAL_MACHINE));
    if (result != ERROR_SUCCESS) result = register_in(Classes(HKEY_CURRENT_USER));
    return HRESULT_FROM_WIN32(result);
  });
}

HRESULT unregister_component() noexcept {
  return at_boundary([] {
    const LSTATUS user = unregister_from(Classes(HKEY_CURRENT_USER));
    const LSTATUS machine = unregister_from(Classes(HKEY_LOCAL_MACHINE));
    return HRESULT_FROM_WIN32(machine != ERROR_SUCCESS ? machine : user);
  });
}

}  // namespace trvtrout::windows
