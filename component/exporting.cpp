#include <stdexcept>

#include "component/TarvelVtrOut_InOut.h"
#include "services/guard.h"
#include "workbook/workbook_operations.h"

// The operations that move a report into a sheet of a workbook.
namespace trvtrout {
namespace {

// The lists without numbers of their own beside count and size.
using PlainInfo = std::u16string (TarvelVtrOut_InOut::*)(std::int32_t&, std::int32_t&);
using NumberedInfo = std::u16string (TarvelVtrOut_InOut::*)(std::int32_t&, std::int32_t&, std::int32_t&, std::int32_t&);

std::int64_t size_if_ok(const std::u16string& result, std::int64_t size) { return result == u"OK" ? size : 0; }

std::int64_t size_by(TarvelVtrOut_InOut& document, PlainInfo info) {
  std::int32_t count = 0, size = 0;
  const std::u16string result = (document.*info)(count, size);
  return size_if_ok(result, size);
}

std::int64_t size_by(TarvelVtrOut_InOut& document, NumberedInfo info) {
  std::int32_t count = 0, current = 0, max = 0, size = 0;
  const std::u16string result = (document.*info)(count, current, max, size);
  return size_if_ok(result, size);
}

std::int64_t fields_of(TarvelVtrOut_InOut& document) {
  std::int32_t size = 0;
  const std::u16string result = document.GetFieldsInfo(size);
  return size_if_ok(result, size);
}

// Definitions and their nodes take a row each.
std::int64_t data_send_of(TarvelVtrOut_InOut& document) {
  std::int32_t count = 0, size = 0;
  std::u16string file, version;
  const std::u16string result = document.GetDsmInfo(count, file, version, size);
  return size_if_ok(result, std::int64_t{count} + size);
}

std::int64_t list_size(TarvelVtrOut_InOut& document, SizedList list) {
  using Utility = TarvelVtrOut_InOut;
  switch (list) {
    case SizedList::kIncludeFiles:
      return size_by(document, &Utility::GetInclInfo);
    case SizedList::kModules:
      return size_by(document, &Utility::GetMdlInfo);
    case SizedList::kTree:
      return size_by(document, &Utility::GetTreInfo);
    case SizedList::kTables:
      return size_by(document, &Utility::GetTableInfo);
    case SizedList::kFields:
      return fields_of(document);
    case SizedList::kLookups:
      return size_by(document, &Utility::GetLookupInfo);
    case SizedList::kControlTags:
      return size_by(document, &Utility::GetTagInfo);
    case SizedList::kLanguages:
      return size_by(document, &Utility::GetLanInfo);
    case SizedList::kDataSend:
      return data_send_of(document);
  }
  return 0;
}

}  // namespace

Boolean TarvelVtrOut_InOut::outcome(const std::optional<Failure>& failure) { return failure ? fail(*failure) : True; }

Boolean TarvelVtrOut_InOut::XL_Output_Statistics(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                                 const std::u16string& StrSheetName) {
  return outcome(output_statistics(services_.spreadsheet, {XLFname, ASCIIFname, StrSheetName}));
}

Boolean TarvelVtrOut_InOut::XL_Output_Compared(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                                               const std::u16string& StrSheetName, TarvelVtrOut_InOut* objPrim,
                                               TarvelVtrOut_InOut* objSec, Boolean Color) {
  const ListSize size_of = [&](SizedList list, bool secondary) {
    TarvelVtrOut_InOut* const document = secondary ? objSec : objPrim;
    if (!document) throw std::invalid_argument("colouring needs both documents, and one wasn't given");
    return list_size(*document, list);
  };
  const ReportMove move{XLFname, ASCIIFname, StrSheetName};
  return outcome(output_compared(services_.spreadsheet, move, Color == True ? size_of : ListSize()));
}

}  // namespace trvtrout
