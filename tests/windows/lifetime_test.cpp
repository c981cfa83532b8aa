#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <windows.h>

#include "tests/windows/jobs.h"

// What stays of the library, in memory and in the registry, and whom its objects belong to.
namespace trvtrout::tests {
namespace {

std::wstring text_of_key(HKEY root, const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  const LSTATUS found =
      RegGetValueW(root, (L"Software\\Classes\\" + key).c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
  return found == ERROR_SUCCESS ? text : L"";
}

std::wstring class_key() {
  wchar_t id[40];
  StringFromGUID2(utility_class(), id, 40);
  return L"CLSID\\" + std::wstring(id);
}

std::wstring registered_library() { return text_of_key(HKEY_LOCAL_MACHINE, class_key() + L"\\InprocServer32"); }

// The library itself, without the runtime.
class Library {
 public:
  explicit Library(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {}
  HRESULT call(const char* name) const {
    const auto entry =
        reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)()>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    return entry();
  }
  HRESULT class_object(REFCLSID id, IClassFactory** factory) const {
    const auto entry = reinterpret_cast<HRESULT(STDMETHODCALLTYPE*)(REFCLSID, REFIID, void**)>(
        reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    return entry(id, __uuidof(IClassFactory), reinterpret_cast<void**>(factory));
  }

 private:
  HMODULE module_;
};

void run_jobs(const std::vector<std::string>& names) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  for (const std::string& name : names) {
    const Folder folder;
    const std::wstring document = folder.add_sample(name);
    report_on(Way::kLate, document);
    expect_approved_files(folder, name, {document}, {});
  }
  CoUninitialize();
}

// Each has its own scratch record for documents of the old format.
TEST(Apartments, WorkSideBySide) {
  std::thread one(run_jobs, std::vector<std::string>{"plant-old-format.vtr", "plant.vtr", "dense.vtr"});
  std::thread other(run_jobs, std::vector<std::string>{"dense-next.vtr", "plant-old-format.vtr", "plant-next.vtr"});
  one.join();
  other.join();
}

// By the type library alone: nothing of the class's own has to be there for it.
TEST(Apartments, CallEachOther) {
  const Folder folder;
  std::wstring document = folder.add_sample("plant.vtr"), list;
  VARIANT_BOOL primary = VARIANT_FALSE;
  Utility utility;
  ASSERT_TRUE(utility.is_true(L"ReadVTR", {&document, &list, &primary}));
  const IID id = id_of(utility_interface(utility.object()).Get());
  IStream* stream = nullptr;
  ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(id, utility.object(), &stream), S_OK);
  HRESULT called = E_FAIL;
  LONG count = 0, size = 0;
  std::thread other([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      ComPtr<IDispatch> proxy;
      if (SUCCEEDED(CoGetInterfaceAndReleaseStream(stream, id, &proxy)))
        called = Utility(proxy, Way::kEarly).call(L"GetLanInfo", {&count, &size}) == L"OK" ? S_OK : S_FALSE;
    }
    CoUninitialize();
  });
  HANDLE thread = reinterpret_cast<HANDLE>(pthread_gethandle(other.native_handle()));
  DWORD index = 0;
  CoWaitForMultipleHandles(0, INFINITE, 1, &thread, &index);
  other.join();
  EXPECT_EQ(called, S_OK);
  LONG own_count = 0, own_size = 0;
  utility.call(L"GetLanInfo", {&own_count, &own_size});
  EXPECT_GT(count, 0);
  EXPECT_EQ(std::pair(count, size), std::pair(own_count, own_size));
}

// Bytes that are in use on all heaps of this process.
std::size_t bytes_in_use() {
  HANDLE heaps[64];
  std::size_t bytes = 0;
  const DWORD count = GetProcessHeaps(std::size(heaps), heaps);
  for (DWORD at = 0; at < count; ++at) {
    PROCESS_HEAP_ENTRY entry{};
    HeapLock(heaps[at]);
    while (HeapWalk(heaps[at], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
    HeapUnlock(heaps[at]);
  }
  return bytes;
}

TEST(Lifetime, WhatIsReleasedLeavesNothing) {
  const Folder folder;
  std::wstring document = folder.add_sample("plant.vtr");
  const auto create = [](int times) {
    for (int time = 0; time < times; ++time) const Utility utility;
  };
  const auto work = [&](int times) {
    for (int time = 0; time < times; ++time) {
      Utility utility(time % 2 == 0 ? Way::kLateVariants : Way::kEarly);
      std::wstring list, report, texts[5];
      VARIANT_BOOL primary = VARIANT_FALSE, temporary = VARIANT_TRUE;
      utility.call(L"ReadVTR", {&document, &list, &primary});
      utility.call(L"ASCII_Output_Lookup", {&document, &report, &temporary});
      utility.call(L"GetProdInfo", {&texts[0], &texts[1], &texts[2], &texts[3], &texts[4]});
      utility.call(L"Delete_ASCII", {&report});
    }
  };
  constexpr std::size_t kMostBytes = 4096;  // of 10,000 objects: none of them leaves as much as a byte
  create(100);
  std::size_t before = bytes_in_use();
  create(10000);
  EXPECT_LT(bytes_in_use(), before + kMostBytes);
  work(20);
  before = bytes_in_use();
  work(100);
  EXPECT_LT(bytes_in_use(), before + kMostBytes);
}

TEST(Lifetime, TheLibraryKnowsWhatLives) {
  const Library library(registered_library());
  EXPECT_EQ(library.call("DllCanUnloadNow"), S_OK);
  {
    const Utility utility;
    EXPECT_EQ(library.call("DllCanUnloadNow"), S_FALSE);
  }
  EXPECT_EQ(library.call("DllCanUnloadNow"), S_OK);
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(library.class_object(CLSID_NULL, &factory), CLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(library.class_object(utility_class(), &factory), S_OK);
  ComPtr<IUnknown> object;
  EXPECT_EQ(factory->CreateInstance(factory.Get(), __uuidof(IUnknown), &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, CLSID_NULL, &object), E_NOINTERFACE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory.Reset();
  EXPECT_EQ(library.call("DllCanUnloadNow"), S_FALSE);
  ASSERT_EQ(library.class_object(utility_class(), &factory), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.Reset();
  EXPECT_EQ(library.call("DllCanUnloadNow"), S_OK);
}

using Keys = std::set<std::wstring>;

// All keys below one, with their values.
void collect(HKEY root, const std::wstring& path, Keys& keys) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
  wchar_t name[1024];
  for (DWORD at = 0;; ++at) {
    DWORD size = std::size(name), length = 0;
    if (RegEnumValueW(key, at, name, &size, nullptr, nullptr, nullptr, &length) != ERROR_SUCCESS) break;
    std::wstring value(length / sizeof(wchar_t), L'\0');
    RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(value.data()), &length);
    keys.insert(path + L'\\' + name + L'=' + value);
  }
  for (DWORD at = 0;; ++at) {
    DWORD size = std::size(name);
    if (RegEnumKeyExW(key, at, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    keys.insert(path + L'\\' + name);
    collect(root, path + L'\\' + name, keys);
  }
  RegCloseKey(key);
}

Keys classes_of(HKEY root) {
  Keys keys;
  collect(root, L"Software\\Classes", keys);
  // Shared by all components; a user who has none yet gets them with the first.
  for (const wchar_t* shared : {L"CLSID", L"Interface", L"TypeLib"})
    keys.erase(std::wstring(L"Software\\Classes\\") + shared);
  return keys;
}

int regsvr32(const std::wstring& options, const std::wstring& library) {
  return static_cast<int>(run_program(L"regsvr32 /s " + options + L" \"" + library + L"\""));
}

// Makes the machine's part of the registry one that nobody can write to.
class LockedMachine {
 public:
  LockedMachine() {
    HKEY gone = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, L"trvtrout-gone", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &gone, nullptr);
    RegDeleteKeyW(HKEY_CURRENT_USER, L"trvtrout-gone");
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, gone);
    RegCloseKey(gone);
  }
  ~LockedMachine() { RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr); }
  LockedMachine(const LockedMachine&) = delete;
  LockedMachine& operator=(const LockedMachine&) = delete;
};

TEST(Registration, LeavesNothingBehind) {
  const std::wstring original = registered_library(), key = class_key() + L"\\InprocServer32";
  const Folder folder(L"Gr\u00f6\u00dfe und L\u00e4nge");
  const std::wstring moved = folder.path(L"TrVtrOut.dll");
  std::filesystem::copy_file(original, moved);
  ASSERT_EQ(regsvr32(L"/u", original), 0);
  EXPECT_THROW(Utility(), CallError);
  const Keys machine = classes_of(HKEY_LOCAL_MACHINE), user = classes_of(HKEY_CURRENT_USER);

  ASSERT_EQ(regsvr32(L"", moved), 0);
  EXPECT_EQ(registered_library(), moved);
  EXPECT_EQ(text_of_key(HKEY_LOCAL_MACHINE, key, L"ThreadingModel"), L"Apartment");
  EXPECT_EQ(classes_of(HKEY_CURRENT_USER), user);
  {
    std::wstring document = folder.add_sample("plant.vtr"), list;
    VARIANT_BOOL primary = VARIANT_FALSE;
    EXPECT_TRUE(Utility(Way::kLate).is_true(L"ReadVTR", {&document, &list, &primary}));
  }
  const Library library(moved);
  {
    // Where the machine can't be written to, the class is the user's alone.
    ASSERT_EQ(regsvr32(L"/u", moved), 0);
    const LockedMachine locked;
    EXPECT_EQ(library.call("DllRegisterServer"), S_OK);
  }
  EXPECT_EQ(classes_of(HKEY_LOCAL_MACHINE), machine);
  EXPECT_NE(classes_of(HKEY_CURRENT_USER), user);
  EXPECT_EQ(library.call("DllUnregisterServer"), S_OK);
  EXPECT_EQ(classes_of(HKEY_LOCAL_MACHINE), machine);
  EXPECT_EQ(classes_of(HKEY_CURRENT_USER), user);
  EXPECT_EQ(regsvr32(L"", original), 0);
}

}  // namespace
}  // namespace trvtrout::tests
