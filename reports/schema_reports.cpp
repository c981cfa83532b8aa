#include "reports/detail_reports.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr ListBlock<TABLES_STRUCT, TABLES_ITEM_STRUCT> kTables{
    .title = "TABLES STRUCTURE",
    .numbers = kCurrentCountMax<TABLES_STRUCT>,
    .id = ListId::kTables,
    .uncounted = "Error",
    .item_title = ",TABLES ITEM STRUCTURE,,,,,,,,,FIELDS STRUCTURE",
    .columns = kTableColumns,
};

constexpr ListBlock<LOOKUPS_STRUCT, LOOKUPS_ITEM_STRUCT> kLookups{
    .title = "LOOKUPS STRUCTURE",
    .numbers = kCurrentCountMax<LOOKUPS_STRUCT>,
    .id = ListId::kLookups,
    .uncounted = "",
    .item_title = ",LOOKUPS ITEM STRUCTURE",
    .columns = kLookupColumns,
};

// One flat list of the fields of all tables.
void write_fields(ReportWriter& out, const DocumentSlots& document) {
  const TABLES_STRUCT& tables = document.Schema->Tables;
  const std::span<const Column<FIELDS_ITEM_STRUCT>> columns = kFieldColumns;
  out.counted(list_of(ListId::kFields).recount(document));
  out.line("FIELDS ITEM STRUCTURE");
  out.heads(",Tid,", columns);
  for_each_item(tables.Items, tables.Count, [&](const TABLES_ITEM_STRUCT& table, std::int32_t) {
    const std::string lead = "," + std::string(table.Tid.bytes()) + ",";
    for_each_item(table.Fields.Items, table.Fields.Count,
                  [&](const FIELDS_ITEM_STRUCT& field, std::int32_t) { out.item(lead, columns, field, ","); });
  });
}

}  // namespace

const DetailReport kTableReport{u"Table", [](ReportWriter& out, const DocumentSlots& document) {
                                  write_list(out, kTables, document, document.Schema->Tables);
                                }};

const DetailReport kFieldReport{u"Field", write_fields};

const DetailReport kLookupReport{u"Lookup", [](ReportWriter& out, const DocumentSlots& document) {
                                   write_list(out, kLookups, document, document.Schema->Lookups);
                                 }};

}  // namespace trvtrout
