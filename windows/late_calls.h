#pragma once

#include <map>
#include <memory>
#include <vector>

#include "windows/system.h"

namespace trvtrout::windows {

// What a caller passes at one place.
struct Parameter {
  VARTYPE type;
  bool by_reference;
};

// A call by id, as IDispatch has it.
struct LateCall {
  DISPID id;
  LCID locale;
  WORD kind;
  DISPPARAMS* parameters;
  VARIANT* result;
  EXCEPINFO* trouble;
  UINT* bad_argument;
};

// What the interface definition says of the operations; it turns calls by name and by id, as script hosts make them,
// into calls of their slots.
//
// The runtime's own way takes variables of the operation's types alone. A script's variables are variants that hold
// anything: an argument is converted first, and what the operation leaves in it goes back into the variable, which
// keeps its type where the value is still the same.
class Definition {
 public:
  // Raises ServiceError when the type library can't be loaded.
  Definition();

  // One for all objects, as long as any of them has it.
  static std::shared_ptr<const Definition> shared();

  ITypeInfo& type_info() const { return *type_info_.Get(); }
  // On the object whose table stands at `object`. Raises bad_alloc.
  HRESULT invoke(void* object, const LateCall& call) const;

 private:
  ComPtr<ITypeInfo> type_info_;
  std::map<DISPID, std::vector<Parameter>> parameters_;
};

}  // namespace trvtrout::windows
