#include "windows/late_calls.h"

#include <mutex>

#include "windows/errors.h"
#include "windows/interface.h"
#include "windows/module.h"
#include "windows/variant.h"

namespace trvtrout::windows {
namespace {

// What one operation takes from its caller: its result isn't among it.
std::vector<Parameter> parameters_of(const FUNCDESC& function) {
  std::vector<Parameter> parameters;
  for (SHORT place = 0; place < function.cParams; ++place) {
    const ELEMDESC& element = function.lprgelemdescParam[place];
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) continue;
    const TYPEDESC& type = element.tdesc;
    parameters.push_back(type.vt == VT_PTR ? Parameter{type.lptdesc->vt, true} : Parameter{type.vt, false});
  }
  return parameters;
}

// One argument of a call, as the caller gives it and as the operation takes it.
class Argument {
 public:
  explicit Argument(VARIANTARG& given) : given_(given), passed_(given) {}

  HRESULT convert(const Parameter& parameter, LCID locale) {
    if (given_.vt == VT_ERROR && given_.scode == DISP_E_PARAMNOTFOUND) return DISP_E_PARAMNOTOPTIONAL;
    if ((given_.vt & VT_BYREF) != 0 && !given_.byref) return E_POINTER;
    if (!parameter.by_reference) return by_value(parameter.type, locale);
    // An object is for the runtime to look at.
    if (parameter.type == VT_USERDEFINED) return (given_.vt & VT_BYREF) != 0 ? copy() : S_OK;
    return parameter.type == VT_VARIANT ? variable() : by_reference(parameter.type, locale);
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
    goes_back_ = given_.vt == (VT_BYREF | VT_VARIANT);
    VARIANTARG& source = goes_back_ ? *given_.pvarVal : given_;
    if ((source.vt & VT_BYREF) != 0) {
      goes_back_ = false;
      passed_ = source;
      return source.vt != (VT_BYREF | type) ? DISP_E_TYPEMISMATCH : source.byref ? S_OK : E_POINTER;
    }
    const HRESULT result = VariantChangeTypeEx(value_.out(), &source, locale, 0, type);
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

  HRESULT convert(const std::vector<Parameter>& parameters, LCID locale, UINT* bad_argument) {
    for (UINT at = 0; at < given_.cArgs; ++at) {
      const std::size_t place = place_of(at);
      if (place >= parameters.size()) return DISP_E_PARAMNOTFOUND;
      const HRESULT result = arguments_[at].convert(parameters[place], locale);
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

Definition::Definition() {
  require(load_type_library()->GetTypeInfoOfGuid(IID__TarvelVtrOut_InOut, &type_info_), "no such interface");
  FUNCDESC* function = nullptr;
  for (UINT index = 0; SUCCEEDED(type_info_->GetFuncDesc(index, &function)); ++index) {
    // What every automation object has isn't for hosts to call in this way.
    const bool hidden = (function->wFuncFlags & FUNCFLAG_FRESTRICTED) != 0;
    if (!hidden) parameters_[function->memid] = parameters_of(*function);
    type_info_->ReleaseFuncDesc(function);
  }
}

std::shared_ptr<const Definition> Definition::shared() {
  static std::mutex mutex;
  static std::weak_ptr<const Definition> in_use;
  const std::scoped_lock lock(mutex);
  auto definition = in_use.lock();
  if (!definition) in_use = definition = std::make_shared<const Definition>();
  return definition;
}

HRESULT Definition::invoke(void* object, const LateCall& call) const {
  const auto invoke_with = [&](DISPPARAMS* given) {
    return type_info_->Invoke(object, call.id, call.kind, given, call.result, call.trouble, call.bad_argument);
  };
  const auto operation = parameters_.find(call.id);
  if (operation == parameters_.end()) return invoke_with(call.parameters);  // the runtime says so
  if (operation->second.size() != call.parameters->cArgs) return DISP_E_BADPARAMCOUNT;
  Arguments arguments(*call.parameters);
  const HRESULT converted = arguments.convert(operation->second, call.locale, call.bad_argument);
  if (FAILED(converted)) return converted;
  std::vector<VARIANTARG> passed = arguments.passed();
  DISPPARAMS parameters = *call.parameters;
  parameters.rgvarg = passed.data();
  const HRESULT outcome = invoke_with(&parameters);
  return FAILED(outcome) ? outcome : arguments.give_back(call.locale);
}

}  // namespace trvtrout::windows
