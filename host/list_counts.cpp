#include "host/list_counts.h"

namespace trvtrout::host {
namespace {

constexpr auto kAny = [](const auto&) { return true; };

}  // namespace

RecordCount count_fields(const vtrfile::TABLES_STRUCT& tables) {
  RecordCount all;
  for_each_held(tables.Items, [&](const auto& table) { all += count_records(table.Fields); });
  return all;
}

RecordCount count_definitions(const vtrfile::DATASEND_STRUCT& definitions) {
  return count_records(definitions.Count, definitions.Items, kAny);
}

RecordCount count_nodes(const vtrfile::DATASEND_STRUCT& definitions) {
  RecordCount all;
  for_each_held(definitions.Items, [&](const auto& item) { all += count_records(item.Count, item.Nodes, kAny); });
  return all;
}

}  // namespace trvtrout::host
