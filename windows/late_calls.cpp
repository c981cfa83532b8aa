#include "windows/late_calls.h"

#include <cstring>
#include <optional>
#include <vector>

#include "windows/interface.h"
#include "windows/module.h"
#include "windows/variant.h"

namespace trvtrout::windows {
namespace {

// The definition of one operation.
class Operation {
 public:
  // Nothing is found for an id that no operation has.
  Operation(ITypeInfo& info, DISPID id, WORD kind) : info_(info) {
    ComPtr<ITypeInfo2> by_id;
    UINT index = 0;
    if (FAILED(info.QueryInterface(IID_PPV_ARGS(&by_id))) ||
        FAILED(by_id->GetFuncIndexOfMemId(id, kind_of(kind), &index)))
      return;
    if (FAILED(info.GetFuncDesc(index, &definition_))) definition_ = nullptr;
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
  ~Operation() {
    if (definition_) info_.ReleaseFuncDesc(definition_);
  }

  // Those that a caller passes: the result isn't one.
  std::size_t parameters() const {
    if (!definition_) return 0;
    const auto count = static_cast<std::size_t>(definition_->cParams);
    const bool has_result = count > 0 && (parameter(count - 1).paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0;
    return count - (has_result ? 1 : 0);
  }
  const ELEMDESC& parameter(std::size_t place) const { return definition_->lprgelemdescParam[place]; }

 private:
  static INVOKEKIND kind_of(WORD kind) { return (kind & DISPATCH_METHOD) != 0 ? INVOKE_FUNC : INVOKE_PROPERTYGET; }

  ITypeInfo& info_;
  FUNCDESC* definition_ = nullptr;
};

// One argument of a call, as the caller gives it and as the operation takes it.
class Argument {
 public:
  explicit Argument(VARIANTARG& given) : given_(given), passed_(given) {}

  HRESULT convert(const TYPEDESC& type, LCID locale) {
    if (given_.vt == VT_ERROR) return S_OK;  // one that wasn't given: the runtime says so
    if (type.vt != VT_PTR) return by_value(type.vt, locale);
    // An object is for the runtime to look at.
    if (type.lptdesc->vt == VT_USERDEFINED) return given_.vt == (VT_BYREF | VT_VARIANT) ? copy() : S_OK;
    return type.lptdesc->vt == VT_VARIANT ? variable() : by_reference(type.lptdesc->vt, locale);
  }
  const VARIANTARG& passed() const { return passed_; }

  HRESULT give_back(LCID locale) {
    if (!goes_back_) return S_OK;
    VARIANT& variable = *given_.pvarVal;
    Variant now;
    const bool kept = variable.vt != VT_EMPTY &&
                      SUCCEEDED(VariantChangeTypeEx(now.out(), &variable, locale, 0, value_.get().vt)) &&
                      same(now.get(), value_.get());
    return kept ? S_OK : VariantCopy(&variable, &value_.get());
  }

 private:
  HRESULT copy() {
    const HRESULT result = VariantCopyInd(value_.out(), &given_);
    passed_ = value_.get();
    return result;
  }
  HRESULT by_value(VARTYPE type, LCID locale) {
    if (given_.vt == type) return S_OK;
    const HRESULT result = VariantChangeTypeEx(value_.out(), &given_, locale, 0, type);
    passed_ = value_.get();
    return result;
  }
  HRESULT by_reference(VARTYPE type, LCID locale) {
    if (given_.vt == (VT_BYREF | type)) return given_.byref ? S_OK : E_POINTER;
    goes_back_ = given_.vt == (VT_BYREF | VT_VARIANT);
    if ((given_.vt & VT_BYREF) != 0 && !goes_back_) return DISP_E_TYPEMISMATCH;
    const HRESULT result = VariantChangeTypeEx(value_.out(), &given_, locale, 0, type);
    refer(type, &value_.get().byref);
    return result;
  }
  // The operation itself puts a value into it.
  HRESULT variable() {
    if (given_.vt == (VT_BYREF | VT_VARIANT)) return S_OK;
    if ((given_.vt & VT_BYREF) != 0) {
      refer(VT_VARIANT, &given_);
      return S_OK;
    }
    refer(VT_VARIANT, &value_.get());
    return VariantCopy(value_.out(), &given_);
  }
  void refer(VARTYPE type, void* to) {
    passed_.vt = static_cast<VARTYPE>(VT_BYREF | type);
    passed_.byref = to;
  }
  static bool same(const VARIANT& one, const VARIANT& other) {
    switch (one.vt) {
      case VT_BSTR:
        return text_of(one.bstrVal) == text_of(other.bstrVal);
      case VT_BOOL:
        return one.boolVal == other.boolVal;
      case VT_I4:
        return one.lVal == other.lVal;
      default:
        return one.date == other.date;
    }
  }

  VARIANTARG& given_;
  VARIANTARG passed_;
  Variant value_;
  bool goes_back_ = false;
};

// The arguments of a call, with the place of each among the parameters of the operation.
class Arguments {
 public:
  explicit Arguments(DISPPARAMS& given) : given_(given) {
    arguments_.reserve(given.cArgs);
    for (UINT at = 0; at < given.cArgs; ++at) arguments_.emplace_back(given.rgvarg[at]);
  }

  HRESULT convert(const Operation& operation, LCID locale, UINT* bad_argument) {
    for (UINT at = 0; at < given_.cArgs; ++at) {
      const std::size_t place = place_of(at);
      if (place >= operation.parameters()) return DISP_E_PARAMNOTFOUND;
      const HRESULT result = arguments_[at].convert(operation.parameter(place).tdesc, locale);
      if (SUCCEEDED(result)) continue;
      if (bad_argument) *bad_argument = at;
      return result;
    }
    return S_OK;
  }
  std::vector<VARIANTARG> passed() const {
    std::vector<VARIANTARG> passed;
    passed.reserve(arguments_.size());
    for (const Argument& argument : arguments_) passed.push_back(argument.passed());
    return passed;
  }
  // In the order of the parameters: a variable that was passed for two has what the operation gave it last.
  HRESULT give_back(LCID locale) {
    HRESULT result = S_OK;
    for (auto argument = arguments_.rbegin(); argument != arguments_.rend(); ++argument) {
      const HRESULT given = argument->give_back(locale);
      if (FAILED(given)) result = given;
    }
    return result;
  }

 private:
  // Named arguments come first, the others behind them in reverse.
  std::size_t place_of(UINT at) const {
    if (at < given_.cNamedArgs) return static_cast<std::size_t>(given_.rgdispidNamedArgs[at]);
    return given_.cArgs - 1 - at;
  }

  DISPPARAMS& given_;
  std::vector<Argument> arguments_;
};

}  // namespace

HRESULT LateCalls::load() {
  if (type_info_) return S_OK;
  return load_type_library()->GetTypeInfoOfGuid(IID__TarvelVtrOut_InOut, &type_info_);
}

HRESULT LateCalls::type_info(ITypeInfo** info) {
  const HRESULT loaded = load();
  return SUCCEEDED(loaded) ? type_info_.CopyTo(info) : loaded;
}

HRESULT LateCalls::ids_of_names(LPOLESTR* names, UINT count, DISPID* ids) {
  const HRESULT loaded = load();
  return SUCCEEDED(loaded) ? type_info_->GetIDsOfNames(names, count, ids) : loaded;
}

HRESULT LateCalls::invoke(void* object, DISPID id, LCID locale, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                          EXCEPINFO* trouble, UINT* bad_argument) {
  if (const HRESULT loaded = load(); FAILED(loaded)) return loaded;
  const auto invoke_with = [&](DISPPARAMS* given) {
    return type_info_->Invoke(object, id, kind, given, result, trouble, bad_argument);
  };
  const Operation operation(*type_info_.Get(), id, kind);
  // Of an operation that there isn't, or as many arguments as none has, the runtime tells.
  if (operation.parameters() != parameters->cArgs) return invoke_with(parameters);
  Arguments arguments(*parameters);
  if (const HRESULT converted = arguments.convert(operation, locale, bad_argument); FAILED(converted)) return converted;
  std::vector<VARIANTARG> passed = arguments.passed();
  DISPPARAMS converted{passed.data(), parameters->rgdispidNamedArgs, parameters->cArgs, parameters->cNamedArgs};
  const HRESULT outcome = invoke_with(&converted);
  if (FAILED(outcome)) return outcome;
  return arguments.give_back(locale);
}

}  // namespace trvtrout::windows
