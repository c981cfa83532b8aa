#include "windows/module.h"
#include "windows/object.h"
#include "windows/registration.h"

// What the component runtime looks for in the library.
namespace trvtrout::windows {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = id == IID_IUnknown || id == IID_IClassFactory ? this : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    return at_boundary([&] {
      auto* const made = new ComponentObject;
      const HRESULT result = made->QueryInterface(id, object);
      made->Release();
      return result;
    });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    ModuleUse::lock(lock != FALSE);
    return S_OK;
  }

 private:
  ~ClassFactory() = default;

  ModuleUse use_;
  std::atomic<ULONG> references_ = 1;
};

HRESULT class_object(REFCLSID class_id, REFIID id, void** object) noexcept {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (class_id != CLSID_TarvelVtrOut_InOut) return CLASS_E_CLASSNOTAVAILABLE;
  return at_boundary([&] {
    auto* const factory = new ClassFactory;
    const HRESULT result = factory->QueryInterface(id, object);
    factory->Release();
    return result;
  });
}

}  // namespace
}  // namespace trvtrout::windows

STDAPI DllGetClassObject(REFCLSID class_id, REFIID id, void** object) {
  return trvtrout::windows::class_object(class_id, id, object);
}

STDAPI DllCanUnloadNow() { return trvtrout::windows::ModuleUse::any() ? S_FALSE : S_OK; }

STDAPI DllRegisterServer() { return trvtrout::windows::register_component(); }

STDAPI DllUnregisterServer() { return trvtrout::windows::unregister_component(); }
