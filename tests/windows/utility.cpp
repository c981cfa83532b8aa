#include "tests/windows/utility.h"

#include <cstdio>

namespace trvtrout::tests {
namespace {

// Behind those of IUnknown and IDispatch.
constexpr std::size_t kFirstSlot = 7;

struct Load {
  VARIANT& value;
  void operator()(const std::wstring* text) const {
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocStringLen(text->data(), static_cast<UINT>(text->size()));
  }
  void operator()(const LONG* number) const { value.vt = VT_I4, value.lVal = *number; }
  void operator()(const VARIANT_BOOL* flag) const { value.vt = VT_BOOL, value.boolVal = *flag; }
  void operator()(const DATE* date) const { value.vt = VT_DATE, value.date = *date; }
  void operator()(IDispatch** object) const {
    value.vt = VT_DISPATCH;
    value.pdispVal = *object;
    if (*object) (*object)->AddRef();
  }
};

struct Store {
  VARIANT& value;
  void as(VARTYPE type) const { require(VariantChangeType(&value, &value, 0, type), "the type that came back"); }
  void operator()(std::wstring* text) const {
    as(VT_BSTR);
    text->assign(value.bstrVal ? value.bstrVal : L"", SysStringLen(value.bstrVal));
  }
  void operator()(LONG* number) const { as(VT_I4), *number = value.lVal; }
  void operator()(VARIANT_BOOL* flag) const { as(VT_BOOL), *flag = value.boolVal; }
  void operator()(DATE* date) const { as(VT_DATE), *date = value.date; }
  void operator()(IDispatch**) const {}
};

}  // namespace

void require(HRESULT result, const std::string& what) {
  if (SUCCEEDED(result)) return;
  char number[16];
  std::snprintf(number, sizeof number, "0x%08lX", static_cast<unsigned long>(result));
  throw CallError(what + ": " + number);
}

VARIANT reference_to(VARIANT& value, VARTYPE type) {
  if (type == VT_VARIANT) return reference_to_variant(value);
  VARIANT reference{};
  reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
  reference.byref = &value.byref;
  return reference;
}

VARIANT reference_to_variant(VARIANT& value) {
  VARIANT reference{};
  reference.vt = VT_BYREF | VT_VARIANT;
  reference.pvarVal = &value;
  return reference;
}

CLSID utility_class() {
  CLSID id;
  require(CLSIDFromProgID(L"TrVtrOut.TarvelVtrOut_InOut", &id), "the class isn't registered");
  return id;
}

ComPtr<ITypeInfo> table_of(ITypeInfo* dispatch) {
  ComPtr<ITypeInfo> table;
  HREFTYPE reference;
  require(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), "the interface isn't dual");
  require(dispatch->GetRefTypeInfo(reference, &table), "the interface's table");
  return table;
}

IID id_of(ITypeInfo* type) {
  TYPEATTR* attributes = nullptr;
  require(type->GetTypeAttr(&attributes), "the type's attributes");
  const IID id = attributes->guid;
  type->ReleaseTypeAttr(attributes);
  return id;
}

ComPtr<ITypeInfo> utility_interface(IDispatch* object) {
  ComPtr<ITypeInfo> dispatch;
  require(object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &dispatch), "the type information");
  return table_of(dispatch.Get());
}

Utility::Utility(Way way) : way_(way) {
  ComPtr<IUnknown> made;
  require(CoCreateInstance(utility_class(), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown), &made),
          "no object of the class");
  require(made.As(&object_), "the object has no dispatch interface");
}

HRESULT Utility::call_slot(std::size_t slot, std::span<VARIANT> arguments) const {
  std::vector<VARTYPE> types;
  std::vector<VARIANTARG*> values;
  for (VARIANT& argument : arguments) {
    types.push_back(argument.vt);
    values.push_back(&argument);
  }
  Value outcome;
  const HRESULT called = DispCallFunc(object_.Get(), (kFirstSlot + slot) * sizeof(void*), CC_STDCALL, VT_ERROR,
                                      static_cast<UINT>(types.size()), types.data(), values.data(), &outcome);
  return FAILED(called) ? called : outcome.scode;
}

HRESULT Utility::invoke(DISPID id, std::span<VARIANT> arguments, VARIANT* result) const {
  std::vector<VARIANT> last_first(arguments.rbegin(), arguments.rend());
  DISPPARAMS parameters{last_first.data(), nullptr, static_cast<UINT>(last_first.size()), 0};
  EXCEPINFO raised{};
  UINT wrong = 0;
  return object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result, &raised, &wrong);
}

HRESULT Utility::id_of(std::wstring name, DISPID& id) const {
  wchar_t* text = name.data();
  return object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
}

void Utility::call_early(const Operation& operation, std::span<Value> values, VARIANT& result) const {
  std::vector<VARIANT> arguments;
  for (std::size_t at = 0; at < values.size(); ++at) {
    const char letter = operation.parameters[at];
    arguments.push_back(by_reference(letter) ? reference_to(values[at], type_of(letter)) : values[at]);
  }
  result.vt = type_of(operation.result);
  arguments.push_back(reference_to(result, result.vt));
  const auto slot = static_cast<std::size_t>(&operation - operations().data());
  require(call_slot(slot, arguments), "by the table");
}

void Utility::call_late(const Operation& operation, std::span<Value> values, VARIANT& result) const {
  DISPID id;
  require(id_of(operation.name, id), "by its name");
  std::vector<VARIANT> arguments;
  for (std::size_t at = 0; at < values.size(); ++at) {
    // A variable of a script that has no value yet is empty.
    if (way_ == Way::kLateVariants) {
      if (values[at].vt == VT_BSTR && SysStringLen(values[at].bstrVal) == 0) VariantClear(&values[at]);
      arguments.push_back(reference_to_variant(values[at]));
    } else {
      const char letter = operation.parameters[at];
      arguments.push_back(by_reference(letter) ? reference_to(values[at], type_of(letter)) : values[at]);
    }
  }
  require(invoke(id, arguments, &result), "by dispatch");
}

std::wstring Utility::call(const std::wstring& name, std::initializer_list<Argument> arguments) {
  const Operation& operation = operation_named(name);
  std::vector<Value> values(arguments.size());
  std::size_t at = 0;
  for (const Argument& argument : arguments) std::visit(Load{values[at++]}, argument);
  Value result;
  if (way_ == Way::kEarly) {
    call_early(operation, values, result);
  } else {
    call_late(operation, values, result);
  }
  at = 0;
  for (const Argument& argument : arguments) std::visit(Store{values[at++]}, argument);
  if (result.vt != type_of(operation.result)) throw CallError("the result has another type");
  if (result.vt == VT_BOOL)
    return result.boolVal == VARIANT_TRUE ? L"True" : result.boolVal == VARIANT_FALSE ? L"False" : L"neither";
  return {result.bstrVal ? result.bstrVal : L"", SysStringLen(result.bstrVal)};
}

}  // namespace trvtrout::tests
