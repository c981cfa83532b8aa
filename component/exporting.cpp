#include "component/exporting.h"

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

// A definition takes a row beside those of its nodes. A list that doesn't hold together has none.
std::int64_t rows_of(vtrfile::ListId list, const vtrfile::ListInfo& info) {
  if (!info.ok) return 0;
  return std::int64_t{info.size} + (list == vtrfile::ListId::kDataSend ? info.count.value_or(0) : 0);
}

// A record that is alike on both sides counts twice and takes one row.
std::int64_t item_rows(const Part& part, const Recount& primary, const Recount& secondary) {
  if (!primary || !secondary) throw std::invalid_argument("colouring needs both documents, and one wasn't given");
  std::int64_t rows = 0;
  for (const vtrfile::ListId list : part.item_lists) {
    for (const Recount* recount : {&primary, &secondary}) rows += rows_of(list, (*recount)(list));
  }
  return rows;
}

Recount recount_of(const TarvelVtrOut_InOut* object) {
  if (!object) return {};
  return [object](vtrfile::ListId list) { return vtrfile::list_of(list).recount(object->CurrentSlots()); };
}

}  // namespace

std::optional<Failure> export_comparison(automation::Spreadsheet& spreadsheet, const ReportMove& move,
                                         const Recount& primary, const Recount& secondary, Boolean color) {
  const Part* const part = part_of_sheet(move.sheet_name);
  const CountRows rows = [&] { return item_rows(*part, primary, secondary); };
  return output_compared(spreadsheet, move, part ? &part->sheet : nullptr, color == True ? rows : CountRows());
}

Boolean TarvelVtrOut_InOut::XL_Output_Statistics(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                                 const std::u16string& StrSheetName) {
  const Part* const part = part_of_sheet(StrSheetName);
  const ReportMove move{XLFname, ASCIIFname, StrSheetName};
  return store_->outcome(output_statistics(store_->services.spreadsheet, move, part ? &part->sheet : nullptr));
}

Boolean TarvelVtrOut_InOut::XL_Output_Compared(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                               const std::u16string& StrSheetName, TarvelVtrOut_InOut* objPrim,
                                               TarvelVtrOut_InOut* objSec, Boolean Color) {
  const ReportMove move{XLFname, ASCIIFname, StrSheetName};
  return store_->outcome(
      export_comparison(store_->services.spreadsheet, move, recount_of(objPrim), recount_of(objSec), Color));
}

}  // namespace trvtrout
