#include "windows/calls.h"

namespace trvtrout::windows {
namespace {

const VARIANT& behind_references(const VARIANT& target) {
  const VARIANT* variant = &target;
  while (variant->vt == (VT_BYREF | VT_VARIANT) && variant->pvarVal) variant = variant->pvarVal;
  return *variant;
}

}  // namespace

bool can_hold_text(const VARIANT& target) {
  const VARIANT& variant = behind_references(target);
  return (variant.vt & VT_BYREF) == 0 || (variant.vt == (VT_BYREF | VT_BSTR) && variant.pbstrVal);
}

void put_text(VARIANT& target, Bstr text) {
  auto& variant = const_cast<VARIANT&>(behind_references(target));
  if (variant.vt == (VT_BYREF | VT_BSTR)) {
    SysFreeString(std::exchange(*variant.pbstrVal, text.release()));
    return;
  }
  VariantClear(&variant);
  variant.vt = VT_BSTR;
  variant.bstrVal = text.release();
}

}  // namespace trvtrout::windows
