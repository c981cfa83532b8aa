#include "windows/dispatched.h"

#include <algorithm>
#include <vector>

#include "text/utf8.h"
#include "windows/errors.h"

namespace trvtrout::windows {
namespace {

constexpr LCID kLocale = 1033;

// How often a call is made again, and after how many milliseconds, while its object is busy with something else: a
// program that has just been started may be.
constexpr int kMaxTries = 100;
constexpr DWORD kPause = 100;

bool is_busy(HRESULT result) { return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER; }

// What an object says of a call that failed.
struct Trouble {
  EXCEPINFO info{};

  Trouble() = default;
  Trouble(const Trouble&) = delete;
  Trouble& operator=(const Trouble&) = delete;
  ~Trouble() {
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrHelpFile);
  }

  [[noreturn]] void raise(HRESULT result, const std::string& what) {
    if (result == DISP_E_EXCEPTION && info.pfnDeferredFillIn) info.pfnDeferredFillIn(&info);
    const bool told = result == DISP_E_EXCEPTION;
    // Its own number: one of the old kind in 16 bits, or a result.
    const ErrorNumber number =
        told && info.wCode ? static_cast<ErrorNumber>(info.wCode) : number_of_result(told ? info.scode : result);
    const std::string words = told && info.bstrDescription
                                  ? text::to_utf8(text_of(info.bstrDescription))
                                  : words_for(static_cast<DWORD>(told && info.scode ? info.scode : result));
    throw ServiceError(number, what + ": " + words);
  }
};

}  // namespace

bool Dispatched::is_registered(const std::u16string& program_id) {
  CLSID id;
  return SUCCEEDED(CLSIDFromProgID(wide(program_id), &id));
}

Dispatched Dispatched::create(const std::u16string& program_id) {
  const std::string name = text::to_utf8(program_id);
  CLSID id;
  if (FAILED(CLSIDFromProgID(wide(program_id), &id))) {
    throw ServiceError(ErrorNumber::kAutomation, "there is no program \"" + name + "\" on this machine");
  }
  ComPtr<IDispatch> object;
  require(CoCreateInstance(id, nullptr, CLSCTX_SERVER, IID_PPV_ARGS(&object)), "can't start \"" + name + "\"");
  return {std::move(object), name};
}

Dispatched::Dispatched(const Variant& value, std::string name) : name_(std::move(name)) {
  const bool is_object = value.get().vt == VT_DISPATCH || value.get().vt == VT_UNKNOWN;
  if (!is_object || !value.get().punkVal || FAILED(value.get().punkVal->QueryInterface(IID_PPV_ARGS(&object_)))) {
    throw ServiceError(ErrorNumber::kAutomation, name_ + " gives no object");
  }
}

DISPID Dispatched::id_of(const wchar_t* name) const {
  DISPID id = DISPID_UNKNOWN;
  std::wstring copy(name);
  wchar_t* names[] = {copy.data()};
  require(object_->GetIDsOfNames(IID_NULL, names, 1, kLocale, &id), told(name));
  return id;
}

std::string Dispatched::told(Member member) const {
  return name_ + "." + (member.name() ? text::to_utf8(narrow(member.name())) : std::to_string(member.id()));
}

Variant Dispatched::invoke_all(WORD kind, Member member, std::span<Variant> arguments) const {
  const DISPID id = member.name() ? id_of(member.name()) : member.id();
  // Their content is moved for the call, and back for their holders to clear it.
  std::vector<VARIANT> reversed;
  reversed.reserve(arguments.size());
  std::transform(arguments.rbegin(), arguments.rend(), std::back_inserter(reversed),
                 [](const Variant& argument) { return argument.get(); });
  DISPID value_of_put = DISPID_PROPERTYPUT;
  const bool put = kind == DISPATCH_PROPERTYPUT;
  DISPPARAMS parameters{reversed.data(), put ? &value_of_put : nullptr, static_cast<UINT>(reversed.size()),
                        put ? 1U : 0U};
  Trouble trouble;
  Variant result;
  HRESULT outcome = S_OK;
  for (int tries = 1;; ++tries, Sleep(kPause)) {
    outcome =
        object_->Invoke(id, IID_NULL, kLocale, kind, &parameters, put ? nullptr : result.out(), &trouble.info, nullptr);
    if (!is_busy(outcome) || tries == kMaxTries) break;
  }
  if (FAILED(outcome)) trouble.raise(outcome, told(member));
  return result;
}

}  // namespace trvtrout::windows
