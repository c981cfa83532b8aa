#include "windows/variant.h"

#include <new>

namespace trvtrout::windows {

BSTR new_bstr(std::u16string_view text) {
  const BSTR bstr = SysAllocStringLen(reinterpret_cast<const wchar_t*>(text.data()), static_cast<UINT>(text.size()));
  if (!bstr) throw std::bad_alloc();
  return bstr;
}

std::u16string text_of(BSTR bstr) { return std::u16string(narrow({bstr, SysStringLen(bstr)})); }

Variant Variant::missing() {
  Variant value(VT_ERROR);
  value.value_.scode = DISP_E_PARAMNOTFOUND;
  return value;
}

}  // namespace trvtrout::windows
