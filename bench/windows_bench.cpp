// What the registered class costs its hosts: trvtrout_windows_bench DOCUMENT prints the times of a read and of a
// report, and of one call by the table, by id, and with the variables of a script. Registered first with regsvr32.
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

#include "windows/interface.h"

namespace trvtrout {
namespace {

using windows::ComPtr;

[[noreturn]] void fail(const char* what, HRESULT result) {
  std::fprintf(stderr, "%s: %08lX\n", what, static_cast<unsigned long>(result));
  std::exit(2);
}

void require(HRESULT result, const char* what) {
  if (FAILED(result)) fail(what, result);
}

// Seconds of one run, the best of five.
double seconds(int runs, const std::function<void()>& work) {
  double best = 1e9;
  for (int round = 0; round < 5; ++round) {
    const auto begin = std::chrono::steady_clock::now();
    for (int run = 0; run < runs; ++run) work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    best = std::min(best, took.count() / runs);
  }
  return best;
}

void measure_document(_TarvelVtrOut_InOut& utility, const wchar_t* document) {
  BSTR path = SysAllocString(document), list = nullptr, report = nullptr;
  VARIANT_BOOL no = VARIANT_FALSE, yes = VARIANT_TRUE, result = VARIANT_FALSE;
  const double read = seconds(1, [&] { require(utility.ReadVTR(&path, &list, &no, &result), "ReadVTR"); });
  if (!result) fail("ReadVTR gives False", 0);
  std::printf("ReadVTR %.2f ms\n", read * 1e3);
  const double written = seconds(1, [&] {
    require(utility.ASCII_Output_Field(&path, &report, &yes, &result), "ASCII_Output_Field");
    if (!result) fail("ASCII_Output_Field gives False", 0);
    require(utility.Delete_ASCII(report, &result), "Delete_ASCII");
  });
  std::printf("ASCII_Output_Field %.2f ms, %.2f times ReadVTR\n", written * 1e3, written / read);
  SysFreeString(path);
  SysFreeString(list);
  SysFreeString(report);
}

double call_by_id(IDispatch& object, DISPID id, VARIANT (&arguments)[2]) {
  DISPPARAMS parameters{arguments, nullptr, 2, 0};
  return seconds(100000, [&] {
    VARIANT result;
    VariantInit(&result);
    require(object.Invoke(id, IID_NULL, 1033, DISPATCH_METHOD, &parameters, &result, nullptr, nullptr), "Invoke");
    VariantClear(&result);
  });
}

void measure_calls(_TarvelVtrOut_InOut& utility) {
  LONG count = 0, size = 0;
  const double by_table = seconds(100000, [&] {
    BSTR text = nullptr;
    require(utility.GetTagInfo(&count, &size, &text), "GetTagInfo");
    SysFreeString(text);
  });
  wchar_t name[] = L"GetTagInfo";
  wchar_t* names[] = {name};
  DISPID id = 0;
  require(utility.GetIDsOfNames(IID_NULL, names, 1, 1033, &id), "GetIDsOfNames");
  VARIANT numbers[2], variables[2], scripts[2];
  for (int at = 0; at < 2; ++at) {
    numbers[at].vt = VT_BYREF | VT_I4;
    numbers[at].plVal = at == 0 ? &size : &count;
    variables[at].vt = VT_I4;
    variables[at].lVal = 0;
    scripts[at].vt = VT_BYREF | VT_VARIANT;
    scripts[at].pvarVal = &variables[at];
  }
  const double by_id = call_by_id(utility, id, numbers), by_script = call_by_id(utility, id, scripts);
  std::printf("a call by the table %.3f us; by id %.3f us, %.1f times that; with a script's variables %.3f us\n",
              by_table * 1e6, by_id * 1e6, by_id / by_table, by_script * 1e6);
}

}  // namespace
}  // namespace trvtrout

int wmain(int count, wchar_t** arguments) {
  using namespace trvtrout;
  if (count != 2) {
    std::fprintf(stderr, "usage: trvtrout_windows_bench DOCUMENT\n");
    return 2;
  }
  require(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), "CoInitializeEx");
  {
    ComPtr<_TarvelVtrOut_InOut> utility;
    require(CoCreateInstance(CLSID_TarvelVtrOut_InOut, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&utility)),
            "TrVtrOut.TarvelVtrOut_InOut");
    measure_document(*utility.Get(), arguments[1]);
    measure_calls(*utility.Get());
  }
  CoUninitialize();
  return 0;
}
