#include "windows/object.h"

#include <stdexcept>

#include "component/exporting.h"
#include "text/utf8.h"
#include "windows/errors.h"

namespace trvtrout::windows {
namespace {

using vtrfile::ListId;
using vtrfile::ListInfo;

using Interface = _TarvelVtrOut_InOut;

// What an accessor answers, of an object of the class wherever it lives and whoever made it.
class Asked {
 public:
  explicit Asked(Interface& object) : object_(object) {}

  ListInfo list(ListId id) {
    switch (id) {
      case ListId::kIncludeFiles:
        return told(object_.GetInclInfo(&count_, &current_, &max_, &size_, text_.out()));
      case ListId::kModules:
        return told(object_.GetMdlInfo(&count_, &size_, text_.out()));
      case ListId::kTree:
        return told(object_.GetTreInfo(&count_, &current_, &max_, &size_, text_.out()));
      case ListId::kTables:
        return told(object_.GetTableInfo(&count_, &current_, &max_, &size_, text_.out()));
      case ListId::kFields:
        return told(object_.GetFieldsInfo(&size_, text_.out()));
      case ListId::kLookups:
        return told(object_.GetLookupInfo(&count_, &current_, &max_, &size_, text_.out()));
      case ListId::kControlTags:
        return told(object_.GetTagInfo(&count_, &size_, text_.out()));
      case ListId::kLanguages:
        return told(object_.GetLanInfo(&count_, &size_, text_.out()));
      case ListId::kDataSend:
        return told(object_.GetDsmInfo(&count_, file_.out(), version_.out(), &size_, text_.out()));
      default:
        throw std::invalid_argument("no comparison has rows of that list");
    }
  }

 private:
  ListInfo told(HRESULT result) const {
    require(result, "can't ask a document what it holds");
    return {.count = count_, .size = size_, .ok = text_.text() == u"OK"};
  }

  Interface& object_;
  LONG count_ = 0, current_ = 0, max_ = 0, size_ = 0;
  Bstr file_, version_, text_;
};

Recount recount_of(Interface* object) {
  if (!object) return {};
  return [object](ListId list) { return Asked(*object).list(list); };
}

}  // namespace

HRESULT ComponentObject::QueryInterface(REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (id == IID_IUnknown || id == IID_IDispatch || id == IID__TarvelVtrOut_InOut) {
    *object = static_cast<_TarvelVtrOut_InOut*>(this);
  } else if (id == IID_ISupportErrorInfo) {
    *object = static_cast<ISupportErrorInfo*>(this);
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ComponentObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT ComponentObject::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT ComponentObject::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return at_boundary([&] { return definition().type_info().QueryInterface(IID_PPV_ARGS(info)); });
}

HRESULT ComponentObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids) return E_POINTER;
  return at_boundary([&] { return definition().type_info().GetIDsOfNames(names, count, ids); });
}

HRESULT ComponentObject::Invoke(DISPID id, REFIID reserved, LCID locale, WORD kind, DISPPARAMS* parameters,
                                VARIANT* result, EXCEPINFO* trouble, UINT* bad_argument) {
  if (reserved != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!parameters || (!parameters->rgvarg && parameters->cArgs > 0)) return E_POINTER;
  return at_boundary([&] {
    return definition().invoke(static_cast<_TarvelVtrOut_InOut*>(this),
                               {id, locale, kind, parameters, result, trouble, bad_argument});
  });
}

HRESULT ComponentObject::InterfaceSupportsErrorInfo(REFIID id) {
  return id == IID__TarvelVtrOut_InOut ? S_OK : S_FALSE;
}

HRESULT ComponentObject::GetOutputFileName(BSTR Fname, BSTR DescName, VARIANT* VTRFname, BSTR* result) {
  if (VTRFname && !can_hold_text(*VTRFname)) return DISP_E_TYPEMISMATCH;
  return run(&TarvelVtrOut_InOut::GetOutputFileName, result, Fname, DescName, VTRFname);
}

// Not by way of the class, which would look into its own records: the objects can be of another apartment.
HRESULT ComponentObject::XL_Output_Compared(BSTR XLFname, BSTR ASCIIFname, BSTR StrSheetName,
                                            _TarvelVtrOut_InOut* objPrim, _TarvelVtrOut_InOut* objSec,
                                            VARIANT_BOOL Color, VARIANT_BOOL* result) {
  if (!result) return E_POINTER;
  return operate([&] {
    const std::u16string workbook = text_of(XLFname), report = text_of(ASCIIFname), sheet = text_of(StrSheetName);
    const auto failure = export_comparison(services_.spreadsheet, {workbook, report, sheet}, recount_of(objPrim),
                                           recount_of(objSec), Boolean{Color});
    if (failure) tell(failure->what);
    *result = failure ? VARIANT_FALSE : VARIANT_TRUE;
    return S_OK;
  });
}

void ComponentObject::tell(const std::string& failure) {
  ComPtr<ICreateErrorInfo> error;
  if (FAILED(CreateErrorInfo(&error))) return;
  Bstr source(kProgramId), description(text::from_utf8(failure));
  error->SetGUID(IID__TarvelVtrOut_InOut);
  error->SetSource(source.get());
  error->SetDescription(description.get());
  ComPtr<IErrorInfo> info;
  if (SUCCEEDED(error.As(&info))) SetErrorInfo(0, info.Get());
}

}  // namespace trvtrout::windows
