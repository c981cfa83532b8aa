#include "tests/windows/program/dispatch_object.h"

#include <exception>

namespace trvtrout::tests {
namespace {

constexpr LCID kProgramLocale = 1033;

bool same_name(const wchar_t* one, const wchar_t* other) { return lstrcmpiW(one, other) == 0; }

bool is_missing(const VARIANT* argument) {
  return !argument || (argument->vt == VT_ERROR && argument->scode == DISP_E_PARAMNOTFOUND);
}

class Object : public IDispatch {
 public:
  Object(ProgramLife& life, std::vector<Member> members) : life_(life), members_(std::move(members)) {
    life_.add_object();
  }
  virtual ~Object() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    const bool known = id == __uuidof(IUnknown) || id == __uuidof(IDispatch);
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      ProgramLife& life = life_;
      delete this;
      life.remove_object();
    }
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    for (const Member& member : members_) {
      if (!same_name(member.name, names[0])) continue;
      ids[0] = member.id;
      HRESULT result = S_OK;
      for (UINT at = 1; at < count; ++at) {
        ids[at] = DISPID_UNKNOWN;
        for (std::size_t parameter = 0; parameter < member.parameters.size(); ++parameter) {
          if (same_name(member.parameters[parameter], names[at])) ids[at] = static_cast<DISPID>(parameter);
        }
        if (ids[at] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
      }
      return result;
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID locale, WORD kind, DISPPARAMS* given, VARIANT* result,
                                   EXCEPINFO* raised, UINT*) override {
    if (life_.next_call_fails()) return fail(raised, "injected fault");
    if (locale != kProgramLocale) return DISP_E_UNKNOWNLCID;
    for (const Member& member : members_) {
      if (member.id == id && (member.kind & kind) != 0) return run(member, *given, result, raised);
    }
    return DISP_E_MEMBERNOTFOUND;
  }

 private:
  static HRESULT fail(EXCEPINFO* raised, const std::string& what) {
    if (!raised) return E_FAIL;
    *raised = {};
    raised->scode = E_FAIL;
    raised->bstrSource = SysAllocString(L"Tests");
    raised->bstrDescription = SysAllocString(std::wstring(what.begin(), what.end()).c_str());
    return DISP_E_EXCEPTION;
  }

  HRESULT run(const Member& member, const DISPPARAMS& given, VARIANT* result, EXCEPINFO* raised) {
    std::vector<const VARIANT*> arguments(member.parameters.size());
    if (given.cArgs > arguments.size()) return DISP_E_BADPARAMCOUNT;
    const bool puts = member.kind == DISPATCH_PROPERTYPUT;
    if (puts && (given.cNamedArgs != 1 || given.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT))
      return DISP_E_PARAMNOTOPTIONAL;
    // The last ones come first, named ones in front of all.
    for (UINT at = 0; at < given.cArgs; ++at) {
      const bool is_named = at < given.cNamedArgs && !puts;
      const std::size_t parameter =
          is_named ? static_cast<std::size_t>(given.rgdispidNamedArgs[at]) : given.cArgs - 1 - at;
      if (parameter >= arguments.size()) return DISP_E_PARAMNOTFOUND;
      if (!is_missing(&given.rgvarg[at])) arguments[parameter] = &given.rgvarg[at];
    }
    if (result) VariantInit(result);
    try {
      member.run(Call(life_, std::move(arguments), result));
      return S_OK;
    } catch (const std::exception& error) {
      return fail(raised, error.what());
    } catch (const HRESULT error) {
      return error;
    }
  }

  ProgramLife& life_;
  std::vector<Member> members_;
  ULONG references_ = 0;
};

}  // namespace

void ProgramLife::remove_object() {
  if (--objects_ == 0 && quits_) PostQuitMessage(0);
}

VARIANT Call::as(std::size_t at, VARTYPE type) const {
  if (is_missing(arguments_[at])) throw HRESULT{E_INVALIDARG};
  VARIANT value;
  VariantInit(&value);
  if (FAILED(VariantChangeType(&value, const_cast<VARIANT*>(arguments_[at]), 0, type)))
    throw HRESULT{DISP_E_TYPEMISMATCH};
  return value;
}

std::u16string Call::text(std::size_t at) const {
  VARIANT value = as(at, VT_BSTR);
  std::u16string text(value.bstrVal, value.bstrVal + SysStringLen(value.bstrVal));
  VariantClear(&value);
  return text;
}

long Call::number(std::size_t at) const { return as(at, VT_I4).lVal; }

bool Call::flag(std::size_t at) const { return as(at, VT_BOOL).boolVal != VARIANT_FALSE; }

void Call::require_missing(std::size_t begin, std::size_t end) const {
  for (std::size_t at = begin; at < (end == 0 ? arguments_.size() : end); ++at) {
    if (arguments_[at]) throw HRESULT{E_INVALIDARG};
  }
}

void Call::give(IDispatch* object) const {
  object->AddRef();
  if (!result_) {
    object->Release();
    return;
  }
  result_->vt = VT_DISPATCH;
  result_->pdispVal = object;
}

void Call::give(const std::optional<std::u16string>& text) const {
  if (!result_ || !text) return;
  result_->vt = VT_BSTR;
  result_->bstrVal = SysAllocString(std::wstring(text->begin(), text->end()).c_str());
}

IDispatch* make_object(ProgramLife& life, std::vector<Member> members) { return new Object(life, std::move(members)); }

}  // namespace trvtrout::tests
