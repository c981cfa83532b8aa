// compare OLD NEW
// Compares the tables of two documents and prints where the report is. Calls the class through its table, with the
// header that the build makes of windows/TrVtrOut.idl.
#include <cstdio>
#include <windows.h>
#include <wrl/client.h>

#include "TrVtrOut.h"

namespace {

// A text of the kind that the class takes and gives back.
struct Text {
  explicit Text(const wchar_t* text = nullptr) : value(SysAllocString(text)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(value); }

  BSTR value;
};

int fail(const wchar_t* what, const Text& detail) {
  fwprintf(stderr, L"%ls %ls\n", what, detail.value ? detail.value : L"");
  return 1;
}

int compare(const wchar_t* old_document, const wchar_t* new_document) {
  Microsoft::WRL::ComPtr<_TarvelVtrOut_InOut> utility;
  Text primary(old_document), secondary(new_document), account, report;
  if (FAILED(CoCreateInstance(__uuidof(TarvelVtrOut_InOut), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&utility))))
    return fail(L"The class isn't registered.", account);
  VARIANT_BOOL no = VARIANT_FALSE, yes = VARIANT_TRUE, done = VARIANT_FALSE;
  if (FAILED(utility->ReadVTR(&primary.value, &account.value, &no, &done)) || !done)
    return fail(L"The first document can't be read.", account);
  if (FAILED(utility->ReadVTR(&secondary.value, &account.value, &yes, &done)) || !done)
    return fail(L"The second document can't be read.", account);
  if (FAILED(utility->Compare_Table(&primary.value, &secondary.value, &report.value, &done)) || !done)
    return fail(L"The report can't be written.", report);
  wprintf(L"%ls\n", report.value);
  return 0;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 3) {
    fwprintf(stderr, L"usage: compare OLD NEW\n");
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int status = compare(arguments[1], arguments[2]);
  CoUninitialize();
  return status;
}
