#include "reports/detail_reports.h"
#include "reports/script_text.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

// First a row for each definition, then a row for each node of all definitions.
void write(ReportWriter& out, const DocumentSlots& document) {
  const DATASEND_STRUCT& list = *document.DataSend;
  const std::span<const Column<DATASEND_ITEM_STRUCT>> columns = kDefinitionColumns;
  const std::span<const Column<DATASEND_NODE_STRUCT>> node_columns = kNodeColumns;
  out.line("DATA SEND STRUCTURE");
  out.labels<DATASEND_STRUCT>(kDataSendLabels, list);
  out.line(",DATA SEND STRUCTURE_HEADER");
  out.heads(",,Header,", columns, kScriptHeads);
  for_each_item(list.Items, list.Count, [&](const DATASEND_ITEM_STRUCT& definition, std::int32_t number) {
    out.item(",," + std::to_string(number) + ",", columns, definition,
             "," + script_text(definition.Header.VBSInfo, out.locale(), "definition " + std::to_string(number)));
  });
  out.gap();
  out.counted(list_of(ListId::kDataSend).recount(document), "");
  out.line("DATA SEND NODE");
  out.heads(",Header,", node_columns);
  for_each_item(list.Items, list.Count, [&](const DATASEND_ITEM_STRUCT& definition, std::int32_t number) {
    const std::string lead = "," + std::to_string(number) + ",";
    for_each_item(definition.Nodes, definition.Count,
                  [&](const DATASEND_NODE_STRUCT& node, std::int32_t) { out.item(lead, node_columns, node); });
  });
}

}  // namespace

const DetailReport kDataSendReport{u"DSend", write};

}  // namespace trvtrout
