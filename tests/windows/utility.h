#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>
#include <windows.h>
#include <wrl/client.h>

#include "tests/windows/operations.h"

namespace trvtrout::tests {

using Microsoft::WRL::ComPtr;

// How a host calls: by the table, by name with the caller's variables by reference, or by name as script hosts do,
// whose variables all are variants.
enum class Way { kEarly, kLate, kLateVariants };

// What the runtime says against a call, with the number of its error.
struct CallError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A variable of the caller, which the call may change.
using Argument = std::variant<std::wstring*, LONG*, VARIANT_BOOL*, DATE*, IDispatch**>;

// A VARIANT that is cleared at its end.
struct Value : VARIANT {
  Value() { VariantInit(this); }
  Value(const Value& other) : Value() { VariantCopy(this, const_cast<Value*>(&other)); }
  Value& operator=(const Value&) = delete;
  ~Value() { VariantClear(this); }
};

// An object of the registered class.
class Utility {
 public:
  // Raises CallError when there is none.
  explicit Utility(Way way = Way::kEarly);
  // One that there is already.
  Utility(ComPtr<IDispatch> object, Way way) : way_(way), object_(std::move(object)) {}

  // The result as text: the operation's own, or "True" or "False". Raises CallError.
  std::wstring call(const std::wstring& name, std::initializer_list<Argument> arguments);
  bool is_true(const std::wstring& name, std::initializer_list<Argument> arguments) {
    return call(name, arguments) == L"True";
  }

  // The calls below everything, with the arguments in the order of the parameters.
  HRESULT call_slot(std::size_t slot, std::span<VARIANT> arguments) const;
  HRESULT invoke(DISPID id, std::span<VARIANT> arguments, VARIANT* result) const;
  // Fails as the runtime does for a name that there isn't.
  HRESULT id_of(std::wstring name, DISPID& id) const;
  IDispatch* object() const { return object_.Get(); }

 private:
  void call_early(const Operation& operation, std::span<Value> values, VARIANT& result) const;
  void call_late(const Operation& operation, std::span<Value> values, VARIANT& result) const;

  Way way_;
  ComPtr<IDispatch> object_;
};

// The class by its name. Raises CallError.
CLSID utility_class();
// The interface that is the default of the class, by its type library. Raises CallError.
ComPtr<ITypeInfo> utility_interface(IDispatch* object);
// The table behind a dual interface. Raises CallError.
ComPtr<ITypeInfo> table_of(ITypeInfo* dispatch);
IID id_of(ITypeInfo* type);

void require(HRESULT result, const std::string& what);

// A reference to the content of a variant, as an argument.
VARIANT reference_to(VARIANT& value, VARTYPE type);
// The same with the variant itself referred to.
VARIANT reference_to_variant(VARIANT& value);

}  // namespace trvtrout::tests
