#include <algorithm>
#include <stdexcept>

#include "component/parts.h"
#include "component/store.h"
#include "workbook/workbook_operations.h"

// The operations that move a report into a sheet of a workbook.
namespace trvtrout {
namespace {

// Null for a name that no part's sheet has.
const Part* part_of_sheet(std::u16string_view name) {
  const auto parts = document_parts();
  const auto part = std::ranges::find(parts, name, [](const Part& candidate) { return candidate.sheet.name; });
  return part == parts.end() ? nullptr : &*part;
}

}  // namespace

Boolean TarvelVtrOut_InOut::XL_Output_Statistics(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                                 const std::u16string& StrSheetName) {
  const Part* const part = part_of_sheet(StrSheetName);
  const ReportMove move{XLFname, ASCIIFname, StrSheetName};
  return store_->outcome(output_statistics(store_->services.spreadsheet, move, part ? &part->sheet : nullptr));
}

Boolean TarvelVtrOut_InOut::XL_Output_Compared(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                               const std::u16string& StrSheetName, TarvelVtrOut_InOut* objPrim,
                                               TarvelVtrOut_InOut* objSec, Boolean Color) {
  const Part* const part = part_of_sheet(StrSheetName);
  // A record that is alike on both sides counts twice and takes one row.
  const CountRows item_rows = [&] {
    if (!objPrim || !objSec) throw std::invalid_argument("colouring needs both documents, and one wasn't given");
    return part->item_rows(objPrim->CurrentSlots()) + part->item_rows(objSec->CurrentSlots());
  };
  const ReportMove move{XLFname, ASCIIFname, StrSheetName};
  return store_->outcome(output_compared(store_->services.spreadsheet, move, part ? &part->sheet : nullptr,
                                         Color == True ? item_rows : CountRows()));
}

}  // namespace trvtrout
