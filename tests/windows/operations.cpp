#include "tests/windows/operations.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace trvtrout::tests {

std::span<const Operation> operations() {
  static constexpr Operation kOperations[] = {
      {L"ReadVTR", "ssb", 'B'},
      {L"ASCII_Output_Product", "ssb", 'B'},
      {L"ASCII_Output_Table", "ssb", 'B'},
      {L"ASCII_Output_Tree", "ssb", 'B'},
      {L"ASCII_Output_Field", "ssb", 'B'},
      {L"ASCII_Output_Lookup", "ssb", 'B'},
      {L"ASCII_Output_CtrlTag", "ssb", 'B'},
      {L"ASCII_Output_Lang", "ssb", 'B'},
      {L"ASCII_Output_DSend", "ssb", 'B'},
      {L"GetOutputFileName", "SSv", 'S'},
      {L"XL_Output_Statistics", "SSS", 'B'},
      {L"XL_Output_Compared", "SSSOOB", 'B'},
      {L"Delete_ASCII", "S", 'B'},
      {L"GetProdInfo", "sssss", 'S'},
      {L"GetInclInfo", "iiii", 'S'},
      {L"GetMdlInfo", "ii", 'S'},
      {L"GetTreInfo", "iiii", 'S'},
      {L"GetTableInfo", "iiii", 'S'},
      {L"GetFieldsInfo", "i", 'S'},
      {L"GetLookupInfo", "iiii", 'S'},
      {L"GetTagInfo", "ii", 'S'},
      {L"GetLanInfo", "ii", 'S'},
      {L"GetDsmInfo", "issi", 'S'},
      {L"GetHedInfo", "di", 'S'},
      {L"GetDSNInfo", "ii", 'S'},
      {L"GetExtInfo", "ii", 'S'},
      {L"GetFmsInfo", "ii", 'S'},
      {L"GetIncNewInfo", "ii", 'S'},
      {L"GetRelInfo", "ii", 'S'},
      {L"GetResiTblInfo", "ii", 'S'},
      {L"GetHidLookInfo", "ii", 'S'},
      {L"GetHidTableInfo", "iiii", 'S'},
      {L"GetHidFieldsInfo", "i", 'S'},
      {L"RecoverVTR", "ss", 'B'},
      {L"Compare_Product", "sss", 'B'},
      {L"Compare_Tree", "sss", 'B'},
      {L"Compare_Table", "sss", 'B'},
      {L"Compare_Field", "sss", 'B'},
      {L"Compare_Lookup", "sss", 'B'},
      {L"Compare_CtrlTag", "sss", 'B'},
      {L"Compare_Lang", "sss", 'B'},
      {L"Compare_DSend", "sss", 'B'},
  };
  return kOperations;
}

const Operation& operation_named(std::wstring_view name) {
  const auto found = std::ranges::find(operations(), name, &Operation::name);
  if (found == operations().end()) throw std::out_of_range("no such operation");
  return *found;
}

VARTYPE type_of(char letter) {
  switch (std::toupper(letter)) {
    case 'S':
      return VT_BSTR;
    case 'I':
      return VT_I4;
    case 'B':
      return VT_BOOL;
    case 'D':
      return VT_DATE;
    case 'V':
      return VT_VARIANT;
    default:
      return VT_DISPATCH;
  }
}

}  // namespace trvtrout::tests
