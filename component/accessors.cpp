#include "component/TarvelVtrOut_InOut.h"
#include "services/guard.h"
#include "vtrfile/recount.h"

// The accessors: what the document last read holds.
namespace trvtrout {
namespace {

using vtrfile::ListInfo;
using vtrfile::recount;

constexpr const char16_t* kOk = u"OK";

std::u16string tell(const ListInfo& info, const char16_t* error, std::int32_t& size) {
  size = info.size;
  return info.ok ? kOk : error;
}

std::u16string tell(const ListInfo& info, const char16_t* error, std::int32_t& count, std::int32_t& size) {
  count = info.count;
  return tell(info, error, size);
}

std::u16string tell(const ListInfo& info, const char16_t* error, std::int32_t& count, std::int32_t& current,
                    std::int32_t& max, std::int32_t& size) {
  current = info.current;
  max = info.max;
  return tell(info, error, count, size);
}

}  // namespace

std::u16string TarvelVtrOut_InOut::GetProdInfo(std::u16string& Code, std::u16string& Description,
                                               std::u16string& Serial, std::u16string& Version,
                                               std::u16string& Database) {
  return guarded(
      [&]() -> std::u16string {
        const vtrfile::PRODUCT_STRUCT& product = current_.Schema->Product;
        Code = services_.locale.Decode(product.Code.bytes());
        Description = services_.locale.Decode(product.Description.bytes());
        Serial = services_.locale.Decode(product.SerialIndex.bytes());
        Version = services_.locale.Decode(product.Version.bytes());
        Database = services_.locale.Decode(product.Database.bytes());
        return kOk;
      },
      [](const Failure&) -> std::u16string { return u"ErrProdInfo"; });
}

std::u16string TarvelVtrOut_InOut::GetInclInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                               std::int32_t& size) {
  return tell(recount(*current_.IncludeFile), u"ErrInclInfo", Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetMdlInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.Module), u"ErrMdlInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetTreInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                              std::int32_t& size) {
  return tell(recount(*current_.Tree), u"ErrTreeInfo", Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                std::int32_t& size) {
  return tell(recount(current_.Schema->Tables), u"ErrTableInfo", Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetFieldsInfo(std::int32_t& size) {
  return tell(recount_fields(current_.Schema->Tables), u"ErrFieldInfo", size);
}

std::u16string TarvelVtrOut_InOut::GetLookupInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                 std::int32_t& size) {
  return tell(recount(current_.Schema->Lookups), u"ErrLookupInfo", Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetTagInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.ControlTag), u"ErrTagInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetLanInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.Language), u"ErrLanInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetDsmInfo(std::int32_t& Count, std::u16string& file, std::u16string& Version,
                                              std::int32_t& size) {
  return guarded(
      [&] {
        const vtrfile::DATASEND_STRUCT& definitions = *current_.DataSend;
        file = services_.locale.Decode(definitions.File.FileHeader.bytes());
        Version = services_.locale.Decode(definitions.File.Version.bytes());
        return tell(recount_nodes(definitions), u"ErrDsmInfo", Count, size);
      },
      [](const Failure&) -> std::u16string { return u"ErrDsmInfo"; });
}

std::u16string TarvelVtrOut_InOut::GetHedInfo(Date& Modified, std::int32_t& size) {
  size = 0;
  return guarded(
      [&]() -> std::u16string {
        const auto date = services_.locale.ParseDate(services_.locale.Decode(current_.Header->Modified.bytes()));
        if (!date) return u"ErrHedInfo";
        Modified = *date;
        return kOk;
      },
      [](const Failure&) -> std::u16string { return u"ErrHedInfo"; });
}

std::u16string TarvelVtrOut_InOut::GetDSNInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.DSNList), u"ErrDSNInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetExtInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.Extended), u"ErrExtInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetFmsInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.FieldMatches), u"ErrFmsInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetIncNewInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.ImportFiles), u"ErrIncNewInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetRelInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(current_.Relation->Relations), u"ErrRelInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetResiTblInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(*current_.ResidualTable), u"ErrResiTblInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetHidLookInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(recount(current_.Hidden->Lookups), u"ErrHidLookInfo", Count, size);
}

std::u16string TarvelVtrOut_InOut::GetHidTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                   std::int32_t& size) {
  return tell(recount(current_.Hidden->Tables), u"ErrTableInfo", Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetHidFieldsInfo(std::int32_t& size) {
  return tell(recount_fields(current_.Hidden->Tables), u"ErrHidFieldInfo", size);
}

}  // namespace trvtrout
