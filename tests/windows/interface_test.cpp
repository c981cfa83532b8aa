#include <cstring>
#include <gtest/gtest.h>
#include <utility>

#include "tests/windows/jobs.h"
#include "tests/windows/utility.h"

// The interface as the type library tells it and as the object keeps it, right and wrong calls among them.
namespace trvtrout::tests {
namespace {

std::wstring documentation(ITypeInfo& type, MEMBERID id, bool help) {
  BSTR text = nullptr;
  type.GetDocumentation(id, help ? nullptr : &text, help ? &text : nullptr, nullptr, nullptr);
  std::wstring copy = text ? text : L"";
  SysFreeString(text);
  return copy;
}

// The letter of a parameter as the type library describes it.
char letter_of(const ELEMDESC& parameter) {
  const TYPEDESC* type = &parameter.tdesc;
  const bool is_reference = type->vt == VT_PTR && type->lptdesc->vt != VT_USERDEFINED;
  if (is_reference) type = type->lptdesc;
  for (const char letter : {'S', 'I', 'B', 'D', 'V'}) {
    if (type->vt == type_of(letter)) return static_cast<char>(is_reference ? letter | 32 : letter);
  }
  return type->vt == VT_PTR ? 'O' : '?';
}

std::string letters_of(const FUNCDESC& function) {
  std::string letters;
  for (SHORT at = 0; at < function.cParams; ++at) letters += letter_of(function.lprgelemdescParam[at]);
  return letters;
}

TEST(TypeLibrary, TellsTheOperationsInTheOrderOfTheirSlots) {
  const Utility utility;
  const auto type = utility_interface(utility.object());
  EXPECT_EQ(documentation(*type.Get(), MEMBERID_NIL, false), L"_TarvelVtrOut_InOut");
  EXPECT_EQ(operations().size(), 42U);
  for (const Operation& operation : operations()) {
    DISPID id = 0;
    ASSERT_EQ(utility.id_of(operation.name, id), S_OK) << narrow(operation.name);
    const auto slot = static_cast<std::size_t>(&operation - operations().data());
    FUNCDESC* function = nullptr;
    ASSERT_EQ(type->GetFuncDesc(static_cast<UINT>(slot), &function), S_OK);
    EXPECT_EQ(function->memid, id);
    EXPECT_EQ(documentation(*type.Get(), function->memid, false), operation.name);
    EXPECT_EQ(static_cast<std::size_t>(function->oVft), (7 + slot) * sizeof(void*));
    EXPECT_EQ(letters_of(*function), std::string(operation.parameters) + static_cast<char>(operation.result | 32))
        << narrow(operation.name);
    const auto flags = function->lprgelemdescParam[function->cParams - 1].paramdesc.wParamFlags;
    EXPECT_EQ(flags & PARAMFLAG_FRETVAL, PARAMFLAG_FRETVAL);
    std::wstring help;
    if (slot == 0)
      help = L"Reads binary VTR file into the structures. Input should be the file location. Returns True on success.";
    if (slot == 1) help = L"Outputs ASCII file with Product info";
    EXPECT_EQ(documentation(*type.Get(), id, true), help);
    type->ReleaseFuncDesc(function);
  }
  ComPtr<ITypeLib> library;
  UINT index = 0;
  ASSERT_EQ(type->GetContainingTypeLib(&library, &index), S_OK);
  BSTR name = nullptr, help = nullptr;
  ASSERT_EQ(library->GetDocumentation(-1, &name, &help, nullptr, nullptr), S_OK);
  EXPECT_EQ(std::wstring(name), L"TrVtrOut");
  EXPECT_EQ(std::wstring(help), L"Tarvel Foundry VTR Output utility");
  SysFreeString(name);
  SysFreeString(help);
}

// A host of 32 bits has a library of its own.
TEST(TypeLibrary, IsTheSameInTheOtherBuild) {
  const Utility utility;
  const auto type = utility_interface(utility.object());
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> dispatch;
  ASSERT_EQ(LoadTypeLibEx(native_path(OTHER_LIBRARY).c_str(), REGKIND_NONE, &library), S_OK);
  ASSERT_EQ(library->GetTypeInfoOfGuid(id_of(type.Get()), &dispatch), S_OK);
  const auto other = table_of(dispatch.Get());
  for (UINT at = 0; at < operations().size(); ++at) {
    FUNCDESC *one = nullptr, *same = nullptr;
    ASSERT_EQ(type->GetFuncDesc(at, &one), S_OK);
    ASSERT_EQ(other->GetFuncDesc(at, &same), S_OK);
    EXPECT_EQ(letters_of(*same), letters_of(*one));
    EXPECT_EQ(same->memid, one->memid);
    for (const bool help : {false, true})
      EXPECT_EQ(documentation(*other.Get(), same->memid, help), documentation(*type.Get(), one->memid, help));
    type->ReleaseFuncDesc(one);
    other->ReleaseFuncDesc(same);
  }
}

// A variant for each parameter of an operation, and one for the result, empty texts and zeros.
std::vector<Value> plain_values(const Operation& operation) {
  std::vector<Value> values(std::strlen(operation.parameters) + 1);
  for (std::size_t at = 0; at + 1 < values.size(); ++at) {
    const VARTYPE type = type_of(operation.parameters[at]);
    values[at].vt = type == VT_VARIANT ? static_cast<VARTYPE>(VT_EMPTY) : type;
  }
  values.back().vt = type_of(operation.result);
  return values;
}

std::vector<VARIANT> arguments_by_table(const Operation& operation, std::vector<Value>& values) {
  std::vector<VARIANT> arguments;
  for (std::size_t at = 0; at < values.size(); ++at) {
    const char letter = at + 1 < values.size() ? operation.parameters[at] : static_cast<char>(operation.result | 32);
    arguments.push_back(by_reference(letter) ? reference_to(values[at], type_of(letter)) : values[at]);
  }
  return arguments;
}

TEST(Calls, NullReferencesAreErrors) {
  Answers answers;
  const Utility utility;
  for (const Operation& operation : operations()) {
    const auto slot = static_cast<std::size_t>(&operation - operations().data());
    auto values = plain_values(operation);
    auto arguments = arguments_by_table(operation, values);
    for (VARIANT& argument : arguments) {
      if (!(argument.vt & VT_BYREF)) continue;
      void* const place = std::exchange(argument.byref, nullptr);
      EXPECT_EQ(utility.call_slot(slot, arguments), E_POINTER) << narrow(operation.name);
      argument.byref = place;
    }
  }
  EXPECT_TRUE(answers.stop().empty());
}

TEST(Calls, WrongArgumentsGetTheErrorsOfTheRuntime) {
  Answers answers;
  const Utility utility;
  DISPID id = 0;
  EXPECT_EQ(utility.id_of(L"GetReportFileName", id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(utility.invoke(4711, {}, nullptr), DISP_E_MEMBERNOTFOUND);
  for (const Operation& operation : operations()) {
    ASSERT_EQ(utility.id_of(operation.name, id), S_OK);
    auto values = plain_values(operation);
    auto arguments = arguments_by_table(operation, values);
    arguments.pop_back();  // the result has a place of its own
    Value result;
    const auto call = [&](std::span<VARIANT> with) { return utility.invoke(id, with, &result); };
    EXPECT_EQ(call(std::span(arguments).first(arguments.size() - 1)), DISP_E_BADPARAMCOUNT) << narrow(operation.name);
    auto more = arguments;
    more.push_back(arguments.front());
    EXPECT_EQ(call(more), DISP_E_BADPARAMCOUNT) << narrow(operation.name);
    for (std::size_t at = 0; at < arguments.size(); ++at) {
      if (type_of(operation.parameters[at]) == VT_VARIANT) continue;  // takes anything
      auto wrong = arguments;
      wrong[at] = {};
      wrong[at].vt = VT_ERROR;
      wrong[at].scode = E_FAIL;
      const HRESULT refused = call(wrong);
      EXPECT_TRUE(refused == DISP_E_TYPEMISMATCH || refused == DISP_E_BADVARTYPE)
          << narrow(operation.name) << ' ' << at << ' ' << std::hex << refused;
      if (!by_reference(operation.parameters[at])) continue;
      wrong[at] = arguments[at];
      wrong[at].byref = nullptr;
      EXPECT_TRUE(FAILED(call(wrong))) << narrow(operation.name) << ' ' << at;
    }
  }
  EXPECT_TRUE(answers.stop().empty());
}

// What a script passes may be of another type that the runtime can convert, and of no type at all.
TEST(Calls, ArgumentsAreConverted) {
  const Folder folder;
  const std::wstring document = folder.add_sample("plant.vtr");
  const Utility utility;
  DISPID id = 0;
  ASSERT_EQ(utility.id_of(L"ReadVTR", id), S_OK);
  for (const VARTYPE flag : {VT_I2, VT_I4, VT_R8, VT_BSTR}) {
    Value path, list, secondary, result;
    path.vt = VT_BSTR;
    path.bstrVal = SysAllocString(document.c_str());
    secondary.vt = VT_BOOL;
    ASSERT_EQ(VariantChangeType(&secondary, &secondary, VARIANT_ALPHABOOL, flag), S_OK);
    VARIANT arguments[] = {reference_to_variant(path), reference_to_variant(list), reference_to_variant(secondary)};
    EXPECT_EQ(utility.invoke(id, arguments, &result), S_OK) << flag;
    EXPECT_EQ(result.vt, VT_BOOL);
    EXPECT_EQ(result.boolVal, VARIANT_TRUE) << flag;
  }
}

}  // namespace
}  // namespace trvtrout::tests
