#pragma once

#include <atomic>
#include <new>
#include <string>
#include <type_traits>

#include "windows/calls.h"
#include "windows/interface.h"
#include "windows/late_calls.h"
#include "windows/module.h"
#include "windows/spreadsheet_automation.h"
#include "windows/system_files.h"
#include "windows/user_locale.h"
#include "windows/user_windows.h"

namespace trvtrout::windows {

// The services of the machine, for one object of the class.
struct SystemServices {
  SystemFiles files;
  SystemMessageBox message_box;
  SystemSaveDialog save_dialog;
  HostMessageLoop message_loop;
  UserLocale locale;
  SpreadsheetAutomation spreadsheet;

  HostServices services() { return {files, message_box, save_dialog, message_loop, locale, spreadsheet}; }
};

// Runs what a host has called. Nothing that is raised leaves it.
template <class Body>
HRESULT at_boundary(Body&& body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

// The forms that several operations share.
#define REPORT(name)                                                                                                   \
  HRESULT STDMETHODCALLTYPE name(BSTR* Fname, BSTR* ASCIIFname, VARIANT_BOOL* IsTemp, VARIANT_BOOL* result) override { \
    return run(&TarvelVtrOut_InOut::name, result, Fname, ASCIIFname, IsTemp);                                          \
  }
#define COMPARISON(name)                                                                                             \
  HRESULT STDMETHODCALLTYPE name(BSTR* PrimFname, BSTR* SecFname, BSTR* ASCIIFname, VARIANT_BOOL* result) override { \
    return run(&TarvelVtrOut_InOut::name, result, PrimFname, SecFname, ASCIIFname);                                  \
  }
#define LIST_WITH_MAX(name)                                                                                  \
  HRESULT STDMETHODCALLTYPE name(LONG* Count, LONG* Current, LONG* Max, LONG* size, BSTR* result) override { \
    return run(&TarvelVtrOut_InOut::name, result, Count, Current, Max, size);                                \
  }
#define LIST(name)                                                                 \
  HRESULT STDMETHODCALLTYPE name(LONG* Count, LONG* size, BSTR* result) override { \
    return run(&TarvelVtrOut_InOut::name, result, Count, size);                    \
  }
#define FIELDS(name)                                                  \
  HRESULT STDMETHODCALLTYPE name(LONG* size, BSTR* result) override { \
    return run(&TarvelVtrOut_InOut::name, result, size);              \
  }

// The class as the component runtime knows it. Begins with one reference. When an operation's result is False, the
// thread's error information says why.
class ComponentObject final : public _TarvelVtrOut_InOut, public ISupportErrorInfo {
 public:
  ComponentObject() { stay_loaded(); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* trouble, UINT* bad_argument) override;

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override;

  HRESULT STDMETHODCALLTYPE ReadVTR(BSTR* Fname, BSTR* StructureList, VARIANT_BOOL* IsSecondary,
                                    VARIANT_BOOL* result) override {
    return run(&TarvelVtrOut_InOut::ReadVTR, result, Fname, StructureList, IsSecondary);
  }
  REPORT(ASCII_Output_Product)
  REPORT(ASCII_Output_Table)
  REPORT(ASCII_Output_Tree)
  REPORT(ASCII_Output_Field)
  REPORT(ASCII_Output_Lookup)
  REPORT(ASCII_Output_CtrlTag)
  REPORT(ASCII_Output_Lang)
  REPORT(ASCII_Output_DSend)
  HRESULT STDMETHODCALLTYPE GetOutputFileName(BSTR Fname, BSTR DescName, VARIANT* VTRFname, BSTR* result) override;
  HRESULT STDMETHODCALLTYPE XL_Output_Statistics(BSTR XLFname, BSTR ASCIIFname, BSTR StrSheetName,
                                                 VARIANT_BOOL* result) override {
    return run(&TarvelVtrOut_InOut::XL_Output_Statistics, result, XLFname, ASCIIFname, StrSheetName);
  }
  HRESULT STDMETHODCALLTYPE XL_Output_Compared(BSTR XLFname, BSTR ASCIIFname, BSTR StrSheetName,
                                               _TarvelVtrOut_InOut* objPrim, _TarvelVtrOut_InOut* objSec,
                                               VARIANT_BOOL Color, VARIANT_BOOL* result) override;
  HRESULT STDMETHODCALLTYPE Delete_ASCII(BSTR ASCIIFname, VARIANT_BOOL* result) override {
    return run(&TarvelVtrOut_InOut::Delete_ASCII, result, ASCIIFname);
  }
  HRESULT STDMETHODCALLTYPE GetProdInfo(BSTR* Code, BSTR* Description, BSTR* Serial, BSTR* Version, BSTR* Database,
                                        BSTR* result) override {
    return run(&TarvelVtrOut_InOut::GetProdInfo, result, Code, Description, Serial, Version, Database);
  }
  LIST_WITH_MAX(GetInclInfo)
  LIST(GetMdlInfo)
  LIST_WITH_MAX(GetTreInfo)
  LIST_WITH_MAX(GetTableInfo)
  FIELDS(GetFieldsInfo)
  LIST_WITH_MAX(GetLookupInfo)
  LIST(GetTagInfo)
  LIST(GetLanInfo)
  HRESULT STDMETHODCALLTYPE GetDsmInfo(LONG* Count, BSTR* file, BSTR* Version, LONG* size, BSTR* result) override {
    return run(&TarvelVtrOut_InOut::GetDsmInfo, result, Count, file, Version, size);
  }
  HRESULT STDMETHODCALLTYPE GetHedInfo(DATE* Modified, LONG* size, BSTR* result) override {
    return run(&TarvelVtrOut_InOut::GetHedInfo, result, Modified, size);
  }
  LIST(GetDSNInfo)
  LIST(GetExtInfo)
  LIST(GetFmsInfo)
  LIST(GetIncNewInfo)
  LIST(GetRelInfo)
  LIST(GetResiTblInfo)
  LIST(GetHidLookInfo)
  LIST_WITH_MAX(GetHidTableInfo)
  FIELDS(GetHidFieldsInfo)
  HRESULT STDMETHODCALLTYPE RecoverVTR(BSTR* RecoveredFname, BSTR* msgRecover, VARIANT_BOOL* result) override {
    return run(&TarvelVtrOut_InOut::RecoverVTR, result, RecoveredFname, msgRecover);
  }
  COMPARISON(Compare_Product)
  COMPARISON(Compare_Tree)
  COMPARISON(Compare_Table)
  COMPARISON(Compare_Field)
  COMPARISON(Compare_Lookup)
  COMPARISON(Compare_CtrlTag)
  COMPARISON(Compare_Lang)
  COMPARISON(Compare_DSend)

 private:
  // Only Release destroys it.
  ~ComponentObject() = default;

  // body() with what every operation has around it.
  template <class Body>
  HRESULT operate(Body&& body) noexcept {
    return at_boundary([&] {
      // The message loop, a box or another program may have the host release the object meanwhile.
      const ComPtr<IUnknown> stays(static_cast<_TarvelVtrOut_InOut*>(this));
      SetErrorInfo(0, nullptr);
      return body();
    });
  }
  template <class Operation, class Returned, class... Given>
  HRESULT run(Operation operation, Returned* result, Given... given) noexcept {
    return operate([&] {
      const HRESULT outcome = call(utility_, operation, result, given...);
      if constexpr (std::is_same_v<Returned, VARIANT_BOOL>) {
        if (SUCCEEDED(outcome) && *result == VARIANT_FALSE) tell(utility_.LastFailure());
      }
      return outcome;
    });
  }
  const Definition& definition() {
    if (!definition_) definition_ = Definition::shared();
    return *definition_;
  }
  static void tell(const std::string& failure);

  ModuleUse use_;
  std::atomic<ULONG> references_ = 1;
  SystemServices services_;
  TarvelVtrOut_InOut utility_{services_.services()};
  std::shared_ptr<const Definition> definition_;  // null until the first late call
};

#undef REPORT
#undef COMPARISON
#undef LIST_WITH_MAX
#undef LIST
#undef FIELDS

}  // namespace trvtrout::windows
