#include "host/document_account.h"

#include <variant>

namespace trvtrout::host {
namespace {

using Utility = TarvelVtrOut_InOut;
using Number = std::int32_t;

// The three forms that the accessors of lists have.
using FullAccessor = std::u16string (Utility::*)(Number&, Number&, Number&, Number&);
using CountAccessor = std::u16string (Utility::*)(Number&, Number&);
using SizeAccessor = std::u16string (Utility::*)(Number&);

struct List {
  const char* title;
  const char* key;
  std::variant<FullAccessor, CountAccessor, SizeAccessor> accessor;
};

const List kLists[] = {
    {"Tables", "tables", &Utility::GetTableInfo},
    {"Fields of all tables", "fields", &Utility::GetFieldsInfo},
    {"Lookups", "lookups", &Utility::GetLookupInfo},
    {"Relations", "relations", &Utility::GetRelInfo},
    {"Hidden tables", "hiddenTables", &Utility::GetHidTableInfo},
    {"Fields of hidden tables", "hiddenFields", &Utility::GetHidFieldsInfo},
    {"Hidden lookups", "hiddenLookups", &Utility::GetHidLookInfo},
    {"Tree nodes", "tree", &Utility::GetTreInfo},
    {"Language texts", "languages", &Utility::GetLanInfo},
    {"Modules", "modules", &Utility::GetMdlInfo},
    {"Field matches", "fieldMatches", &Utility::GetFmsInfo},
    {"Extended storage", "extendedStorage", &Utility::GetExtInfo},
    {"Include files", "includeFiles", &Utility::GetInclInfo},
    {"Control tags", "controlTags", &Utility::GetTagInfo},
    {"DSN list", "dsnList", &Utility::GetDSNInfo},
    {"Import files", "importFiles", &Utility::GetIncNewInfo},
    {"Residual tables", "residualTables", &Utility::GetResiTblInfo},
};

struct Ask {
  Utility& utility;
  AccountList& list;

  void operator()(FullAccessor accessor) const {
    list.count = list.current = list.max = 0;
    list.result = (utility.*accessor)(*list.count, *list.current, *list.max, list.size);
  }
  void operator()(CountAccessor accessor) const {
    list.count = 0;
    list.result = (utility.*accessor)(*list.count, list.size);
  }
  void operator()(SizeAccessor accessor) const { list.result = (utility.*accessor)(list.size); }
};

}  // namespace

DocumentAccount account_for(Utility& utility, Locale& locale) {
  DocumentAccount account;
  const vtrfile::HEADER_STRUCT& header = *utility.CurrentSlots().Header;
  account.header = {{"Format version", "version", locale.Decode(header.Version.bytes())},
                    {"Created", "created", locale.Decode(header.Created.bytes())},
                    {"Last modified", "modified", locale.Decode(header.Modified.bytes())},
                    {"Written as", "fileName", locale.Decode(header.FileName.bytes())}};

  account.product = {{"Product", "code", {}},
                     {"Description", "description", {}},
                     {"Serial index", "serialIndex", {}},
                     {"Product version", "version", {}},
                     {"Database", "database", {}}};
  auto& product = account.product;
  utility.GetProdInfo(product[0].text, product[1].text, product[2].text, product[3].text, product[4].text);

  for (const List& list : kLists) {
    AccountList& entry = account.lists.emplace_back(AccountList{.title = list.title, .key = list.key});
    std::visit(Ask{utility, entry}, list.accessor);
  }
  // The stored number is that of the definitions, the recount that of their nodes.
  AccountList& nodes = account.lists.emplace_back(AccountList{.title = "Data send items, nodes", .key = "dataSend"});
  nodes.count = 0;
  std::u16string file, version;
  nodes.result = utility.GetDsmInfo(*nodes.count, file, version, nodes.size);
  return account;
}

}  // namespace trvtrout::host
