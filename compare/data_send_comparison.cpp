#include <stdexcept>

#include "compare/list_comparison.h"
#include "reports/script_text.h"

// Definitions pair by their place in the list, the nodes of a pair by their Index.
namespace trvtrout {
namespace {

using namespace vtrfile;
using Definitions = Side<DATASEND_ITEM_STRUCT>;

Side<DATASEND_NODE_STRUCT> nodes_of(const DATASEND_ITEM_STRUCT& definition) {
  return {definition.Nodes, definition.Count};
}

struct HeaderRows {
  ComparisonWriter& writer;
  Definitions primary;
  Definitions secondary;

  void pair(std::int32_t number, std::int32_t partner) const {
    const DATASEND_ITEM_STRUCT& one = primary.at(number);
    const DATASEND_ITEM_STRUCT& other = secondary.at(partner);
    const std::string scripts = scripts_of(one, number, "primary");
    // Without scripts of its own a definition takes its partner's for none as well, and shows them so.
    const std::string other_scripts = one.Header.VBSInfo.empty() ? scripts : element_texts(other, partner);
    const bool changed = differs<DATASEND_ITEM_STRUCT>(kDefinitionColumns, one, other) ||
                         one.Header.Number1 != other.Header.Number1 || scripts != other_scripts;
    if (!changed) return row(RowForm::kUnchanged, number, one, scripts);
    row(RowForm::kOriginal, number, one, scripts);
    row(RowForm::kChanged, partner, other, other_scripts);
  }
  void deleted(std::int32_t number) const {
    row(RowForm::kDeleted, number, primary.at(number), scripts_of(primary.at(number), number, "primary"));
  }
  void added(std::int32_t number) const {
    row(RowForm::kAdded, number, secondary.at(number), scripts_of(secondary.at(number), number, "secondary"));
  }

 private:
  static std::string name_of(std::int32_t number, const std::string& side) {
    return "definition " + std::to_string(number) + " of the " + side + " document";
  }
  std::string scripts_of(const DATASEND_ITEM_STRUCT& definition, std::int32_t number, const std::string& side) const {
    return script_text(definition.Header.VBSInfo, writer.out().locale(), name_of(number, side));
  }
  // Of the partner of a definition that has scripts; raises when it has none itself.
  std::string element_texts(const DATASEND_ITEM_STRUCT& partner, std::int32_t number) const {
    if (!partner.Header.VBSInfo.empty()) return scripts_of(partner, number, "secondary");
    throw std::runtime_error(name_of(number, "secondary") + " has no scripts (VBSInfo), but its partner has");
  }
  void row(RowForm form, std::int32_t place, const DATASEND_ITEM_STRUCT& definition, const std::string& scripts) const {
    writer.row<DATASEND_ITEM_STRUCT>(form, ",,," + std::to_string(place) + ",", kDefinitionColumns, definition,
                                     "," + scripts);
  }
};

// Pairs definition with definition by their places.
template <class Rows>
void walk_definitions(const Rows& rows) {
  const auto place = [](std::int32_t number) { return MatchKey{.number = number}; };
  // A list that is shorter than its count fails before the first row, as in every walk.
  const auto filled_place = [&](std::int32_t number) {
    rows.secondary.at(number);
    return place(number);
  };
  ByKey policy(place, filled_place, rows.secondary.records());
  walk(rows.primary.records(), policy, rows);
}

void write(ComparisonWriter& writer, const GroupSlots& primary, const GroupSlots& secondary) {
  ReportWriter& out = writer.out();
  writer.title("DATA SEND STRUCTURE (");
  writer.values<DATASEND_STRUCT>(kDataSendLabels, *primary.DataSend, *secondary.DataSend);
  out.line(",,DATA SEND STRUCTUREURE_HEADER");
  out.heads<DATASEND_ITEM_STRUCT>(",,,Header,", kDefinitionColumns, kScriptHeads);
  walk_definitions(HeaderRows{writer, side_of(*primary.DataSend), side_of(*secondary.DataSend)});
  out.gap();
  out.line(",DATA SEND NODE");
  out.heads<DATASEND_NODE_STRUCT>(",,Header,", kNodeColumns);
  walk_definitions(NestedRows<DATASEND_ITEM_STRUCT, DATASEND_NODE_STRUCT>{
      .writer = writer,
      .primary = side_of(*primary.DataSend),
      .secondary = side_of(*secondary.DataSend),
      .columns = kNodeColumns,
      .inner = nodes_of,
      .key = [](const DATASEND_NODE_STRUCT& node) { return MatchKey{.number = node.Index}; },
      .first_cell = [](const DATASEND_ITEM_STRUCT&, std::int32_t number) { return std::to_string(number); },
  });
}

void keys(const GroupSlots& document, const std::function<void(std::string)>& take) {
  int place = 0;
  for_each_record(side_of(*document.DataSend), [&](const DATASEND_ITEM_STRUCT& definition) {
    const std::string lead = std::to_string(++place) + "/";
    for_each_record(nodes_of(definition), [&](const auto& node) { take(lead + std::to_string(node.Index)); });
  });
}

}  // namespace

const Comparison kDataSendComparison{u"DSend_Compared", write, keys};

}  // namespace trvtrout
