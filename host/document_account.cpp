#include "host/document_account.h"

#include <variant>

#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using Utility = TarvelVtrOut_InOut;
using Number = std::int32_t;
using vtrfile::DocumentSlots;

// The three forms that the accessors of lists have.
using FullAccessor = std::u16string (Utility::*)(Number&, Number&, Number&, Number&);
using CountAccessor = std::u16string (Utility::*)(Number&, Number&);
using SizeAccessor = std::u16string (Utility::*)(Number&);

struct List {
  std::string_view section;
  const char* title;
  const char* key;
  std::variant<FullAccessor, CountAccessor, SizeAccessor> accessor;
  RecordCount (*count)(const DocumentSlots&);
};

// The records of the list that is the record of a section, or that stands in it under these names.
template <auto Slot>
RecordCount records(const DocumentSlots& document) {
  return count_records(*(document.*Slot));
}
template <auto Slot, auto Name>
RecordCount records(const DocumentSlots& document) {
  return count_records((*(document.*Slot)).*Name);
}
template <auto Slot>
RecordCount fields(const DocumentSlots& document) {
  return count_fields((document.*Slot)->Tables);
}

template <auto Member>
constexpr std::string_view tag_of = vtrfile::kSection<Member>.tag;

const List kLists[] = {
    {tag_of<&DocumentSlots::Schema>, "Tables", "tables", &Utility::GetTableInfo,
     records<&DocumentSlots::Schema, &vtrfile::SCHEMA_STRUCT::Tables>},
    {tag_of<&DocumentSlots::Schema>, "Fields of all tables", "fields", &Utility::GetFieldsInfo,
     fields<&DocumentSlots::Schema>},
    {tag_of<&DocumentSlots::Schema>, "Lookups", "lookups", &Utility::GetLookupInfo,
     records<&DocumentSlots::Schema, &vtrfile::SCHEMA_STRUCT::Lookups>},
    {tag_of<&DocumentSlots::Relation>, "Relations", "relations", &Utility::GetRelInfo,
     records<&DocumentSlots::Relation, &vtrfile::RELATION_STRUCT::Relations>},
    {tag_of<&DocumentSlots::Hidden>, "Hidden tables", "hiddenTables", &Utility::GetHidTableInfo,
     records<&DocumentSlots::Hidden, &vtrfile::HIDETABLES_STRUCT::Tables>},
    {tag_of<&DocumentSlots::Hidden>, "Fields of hidden tables", "hiddenFields", &Utility::GetHidFieldsInfo,
     fields<&DocumentSlots::Hidden>},
    {tag_of<&DocumentSlots::Hidden>, "Hidden lookups", "hiddenLookups", &Utility::GetHidLookInfo,
     records<&DocumentSlots::Hidden, &vtrfile::HIDETABLES_STRUCT::Lookups>},
    {tag_of<&DocumentSlots::Tree>, "Tree nodes", "tree", &Utility::GetTreInfo, records<&DocumentSlots::Tree>},
    {tag_of<&DocumentSlots::Language>, "Language texts", "languages", &Utility::GetLanInfo,
     records<&DocumentSlots::Language>},
    {tag_of<&DocumentSlots::Module>, "Modules", "modules", &Utility::GetMdlInfo, records<&DocumentSlots::Module>},
    {tag_of<&DocumentSlots::FieldMatches>, "Field matches", "fieldMatches", &Utility::GetFmsInfo,
     records<&DocumentSlots::FieldMatches>},
    {tag_of<&DocumentSlots::Extended>, "Extended storage", "extendedStorage", &Utility::GetExtInfo,
     records<&DocumentSlots::Extended>},
    {tag_of<&DocumentSlots::IncludeFile>, "Include files", "includeFiles", &Utility::GetInclInfo,
     records<&DocumentSlots::IncludeFile>},
    {tag_of<&DocumentSlots::ControlTag>, "Control tags", "controlTags", &Utility::GetTagInfo,
     records<&DocumentSlots::ControlTag>},
    {tag_of<&DocumentSlots::DSNList>, "DSN list", "dsnList", &Utility::GetDSNInfo, records<&DocumentSlots::DSNList>},
    {tag_of<&DocumentSlots::ImportFiles>, "Import files", "importFiles", &Utility::GetIncNewInfo,
     records<&DocumentSlots::ImportFiles>},
    {tag_of<&DocumentSlots::ResidualTable>, "Residual tables", "residualTables", &Utility::GetResiTblInfo,
     records<&DocumentSlots::ResidualTable>},
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
    AccountList& entry =
        account.lists.emplace_back(AccountList{.section = list.section, .title = list.title, .key = list.key});
    std::visit(Ask{utility, entry}, list.accessor);
    entry.records = list.count(utility.CurrentSlots());
  }
  // The stored number is that of the definitions, the recount that of their nodes.
  AccountList& nodes = account.lists.emplace_back(
      AccountList{.section = tag_of<&DocumentSlots::DataSend>, .title = "Data send items, nodes", .key = "dataSend"});
  nodes.count = 0;
  std::u16string file, version;
  nodes.result = utility.GetDsmInfo(*nodes.count, file, version, nodes.size);
  return account;
}

}  // namespace trvtrout::host
