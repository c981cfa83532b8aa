#include "component/store.h"
#include "vtrfile/lists.h"

// The accessors: what the document last read holds.
namespace trvtrout {
namespace {

using vtrfile::DocumentSlots;
using vtrfile::ListId;

constexpr std::u16string_view kOk = u"OK";

std::u16string tell(const DocumentSlots& document, ListId id, std::int32_t& count, std::int32_t& current,
                    std::int32_t& max, std::int32_t& size) {
  const vtrfile::DocumentList& list = vtrfile::list_of(id);
  const vtrfile::ListInfo info = list.recount(document);
  count = info.count.value_or(0);
  current = info.current.value_or(0);
  max = info.max.value_or(0);
  size = info.size;
  return std::u16string(info.ok ? kOk : list.error);
}

std::u16string tell(const DocumentSlots& document, ListId id, std::int32_t& count, std::int32_t& size) {
  std::int32_t current, max;
  return tell(document, id, count, current, max, size);
}

std::u16string tell(const DocumentSlots& document, ListId id, std::int32_t& size) {
  std::int32_t count;
  return tell(document, id, count, size);
}

}  // namespace

std::u16string TarvelVtrOut_InOut::GetProdInfo(std::u16string& Code, std::u16string& Description,
                                               std::u16string& Serial, std::u16string& Version,
                                               std::u16string& Database) {
  return guarded(
      [&]() -> std::u16string {
        const vtrfile::PRODUCT_STRUCT& product = store_->current.Schema->Product;
        Code = store_->services.locale.Decode(product.Code.bytes());
        Description = store_->services.locale.Decode(product.Description.bytes());
        Serial = store_->services.locale.Decode(product.SerialIndex.bytes());
        Version = store_->services.locale.Decode(product.Version.bytes());
        Database = store_->services.locale.Decode(product.Database.bytes());
        return std::u16string(kOk);
      },
      [](const Failure&) -> std::u16string { return u"ErrProdInfo"; });
}

std::u16string TarvelVtrOut_InOut::GetInclInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                               std::int32_t& size) {
  return tell(store_->current, ListId::kIncludeFiles, Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetMdlInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kModules, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetTreInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                              std::int32_t& size) {
  return tell(store_->current, ListId::kTree, Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                std::int32_t& size) {
  return tell(store_->current, ListId::kTables, Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetFieldsInfo(std::int32_t& size) {
  return tell(store_->current, ListId::kFields, size);
}

std::u16string TarvelVtrOut_InOut::GetLookupInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                 std::int32_t& size) {
  return tell(store_->current, ListId::kLookups, Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetTagInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kControlTags, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetLanInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kLanguages, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetDsmInfo(std::int32_t& Count, std::u16string& file, std::u16string& Version,
                                              std::int32_t& size) {
  return guarded(
      [&] {
        const vtrfile::DATASEND_STRUCT& definitions = *store_->current.DataSend;
        file = store_->services.locale.Decode(definitions.File.FileHeader.bytes());
        Version = store_->services.locale.Decode(definitions.File.Version.bytes());
        return tell(store_->current, ListId::kDataSend, Count, size);
      },
      [](const Failure&) { return std::u16string(vtrfile::list_of(ListId::kDataSend).error); });
}

std::u16string TarvelVtrOut_InOut::GetHedInfo(Date& Modified, std::int32_t& size) {
  size = 0;
  return guarded(
      [&]() -> std::u16string {
        const auto date =
            store_->services.locale.ParseDate(store_->services.locale.Decode(store_->current.Header->Modified.bytes()));
        if (!date) return u"ErrHedInfo";
        Modified = *date;
        return std::u16string(kOk);
      },
      [](const Failure&) -> std::u16string { return u"ErrHedInfo"; });
}

std::u16string TarvelVtrOut_InOut::GetDSNInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kDsnList, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetExtInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kExtendedStorage, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetFmsInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kFieldMatches, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetIncNewInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kImportFiles, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetRelInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kRelations, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetResiTblInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kResidualTables, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetHidLookInfo(std::int32_t& Count, std::int32_t& size) {
  return tell(store_->current, ListId::kHiddenLookups, Count, size);
}

std::u16string TarvelVtrOut_InOut::GetHidTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max,
                                                   std::int32_t& size) {
  return tell(store_->current, ListId::kHiddenTables, Count, Current, Max, size);
}

std::u16string TarvelVtrOut_InOut::GetHidFieldsInfo(std::int32_t& size) {
  return tell(store_->current, ListId::kHiddenFields, size);
}

}  // namespace trvtrout
