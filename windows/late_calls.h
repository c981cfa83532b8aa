#pragma once

#include "windows/system.h"

namespace trvtrout::windows {

// Calls by name and by id, as script hosts make them: what the interface definition says of an operation turns such a
// call into one of its slot. The members are those of IDispatch, for the object at `object`.
//
// The runtime's own way takes variables of the operation's types alone. A script's variables are variants that hold
// anything: an argument is converted first, and what the operation leaves in it goes back into the variable, which
// keeps its type where the value is still the same.
class LateCalls {
 public:
  HRESULT type_info(ITypeInfo** info);
  HRESULT ids_of_names(LPOLESTR* names, UINT count, DISPID* ids);
  HRESULT invoke(void* object, DISPID id, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                 EXCEPINFO* trouble, UINT* bad_argument);

 private:
  HRESULT load();

  ComPtr<ITypeInfo> type_info_;
};

}  // namespace trvtrout::windows
