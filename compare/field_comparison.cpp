#include "compare/list_comparison.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

void write(ComparisonWriter& writer, const GroupSlots& primary, const GroupSlots& secondary) {
  writer.title("FIELDS ITEM STRUCTURE (");
  writer.out().heads<FIELDS_ITEM_STRUCT>(",,Tid,", kFieldColumns);
  const NestedRows<TABLES_ITEM_STRUCT, FIELDS_ITEM_STRUCT> rows{
      .writer = writer,
      .primary = side_of(primary.Schema->Tables),
      .secondary = side_of(secondary.Schema->Tables),
      .columns = kFieldColumns,
      .inner = [](const TABLES_ITEM_STRUCT& table) { return side_of(table.Fields); },
      .key = [](const FIELDS_ITEM_STRUCT& field) { return MatchKey{.text = field.Fid.bytes()}; },
      .first_cell = [](const TABLES_ITEM_STRUCT& table, std::int32_t) { return std::string(table.Tid.bytes()); },
      .tail = ",",
  };
  ByKey policy = by_key(rows.primary, rows.secondary,
                        [](const TABLES_ITEM_STRUCT& table) { return MatchKey{.text = table.Tid.bytes()}; });
  walk(rows.primary.records(), policy, rows);
}

void keys(const GroupSlots& document, const std::function<void(std::string)>& take) {
  for_each_record(side_of(document.Schema->Tables), [&](const TABLES_ITEM_STRUCT& table) {
    const std::string lead = std::string(table.Tid.bytes()) + "/";
    for_each_record(side_of(table.Fields), [&](const auto& field) { take(lead + std::string(field.Fid.bytes())); });
  });
}

}  // namespace

const Comparison kFieldComparison{u"Fields_Compared", write, keys};

}  // namespace trvtrout
