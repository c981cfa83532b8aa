#include "compare/list_comparison.h"

// A tree node has no single key. Which secondary node is a node's partner depends on what kind of node it is, and the
// node that leaves the working list after a match is chosen by a second rule, which looks at the primary node alone: it
// need not be the partner.
namespace trvtrout {
namespace {

using namespace vtrfile;
using Node = TREE_HIERARCHY_ITEM_STRUCT;

constexpr std::int16_t kTableControl = 1;
constexpr std::int16_t kRootControl = 2;
constexpr std::int16_t kLeafControl = 3;

// A node without a table and without a code: its partner is any node with the same Control.
bool is_root(const Node& node) {
  return node.Tid.empty() && node.TableInternalCode.empty() && node.Control == kRootControl;
}

MatchKey by_table(const Node& node) { return {.number = node.Control, .text = node.Tid.bytes()}; }
MatchKey by_code(const Node& node) { return {.number = node.Control, .text = node.TableInternalCode.bytes()}; }
MatchKey by_control(const Node& node) { return {.number = node.Control}; }
MatchKey by_level(const Node& node) { return {.number = node.Control, .second_number = node.Level}; }
MatchKey by_table_alone(const Node& node) { return {.text = node.Tid.bytes()}; }
MatchKey by_description(const Node& node) {
  return {.text = node.Description.bytes(), .second_text = node.Tid.bytes()};
}

class ByTreeRules {
 public:
  ByTreeRules(const Side<Node>& primary, const Side<Node>& secondary)
      : primary_(primary),
        list_(secondary.records()),
        by_table_(index(secondary, by_table)),
        by_control_(index(secondary, by_control)),
        by_code_(index(secondary, by_code)),
        by_level_(index(secondary, by_level)),
        by_table_alone_(index(secondary, by_table_alone)),
        by_description_(index(secondary, by_description)) {}
  ByTreeRules(const ByTreeRules&) = delete;  // the indices know the list by its address
  ByTreeRules& operator=(const ByTreeRules&) = delete;

  std::int32_t match(std::int32_t number) {
    const Node& node = primary_.at(number);
    const std::int32_t partner = partner_of(node);
    const std::int32_t leaving = partner ? leaving_for(node) : 0;
    if (leaving) list_.remove(leaving);
    return partner;
  }
  const WorkingList& list() const noexcept { return list_; }

 private:
  MatchIndex<> index(const Side<Node>& secondary, MatchKey (*key)(const Node&)) const {
    return MatchIndex<>(list_, [&](std::int32_t number) { return key(secondary.at(number)); });
  }
  std::int32_t partner_of(const Node& node) {
    if (!node.Tid.empty()) return by_table_.first_left(by_table(node));
    if (is_root(node)) return by_control_.first_left(by_control(node));
    if (node.Control == kTableControl) return by_code_.first_left(by_code(node));
    return 0;
  }
  std::int32_t leaving_for(const Node& node) {
    if (node.Tid.empty() && node.Control == kRootControl) return by_level_.first_left(by_level(node));
    if (!node.Tid.empty() && node.Control == kLeafControl) return by_table_alone_.first_left(by_table_alone(node));
    return by_description_.first_left(by_description(node));
  }

  const Side<Node>& primary_;
  WorkingList list_;
  MatchIndex<> by_table_, by_control_, by_code_, by_level_, by_table_alone_, by_description_;
};

constexpr ListComparison<TREE_HIERARCHY_STRUCT, Node> kTree{
    .title = "TREE HIERARCHY STRUCTURE (",
    .numbers = kCountCurrentMax<TREE_HIERARCHY_STRUCT>,
    .item_title = ",,TREE HIERARCHY ITEM STRUCTURE",
    .columns = kTreeColumns,
};

// Of a root's partner the code isn't compared.
struct TreeRows : ItemRows<Node> {
  void pair(std::int32_t number, std::int32_t partner) const {
    const Node& original = primary.at(number);
    const Node& changed = secondary.at(partner);
    Node compared = changed;
    if (is_root(original)) compared.TableInternalCode = original.TableInternalCode;
    write_pair(original, changed, differs(columns, original, compared));
  }
};

void write(ComparisonWriter& writer, const GroupSlots& primary, const GroupSlots& secondary) {
  write_heads(writer, kTree, *primary.Tree, *secondary.Tree);
  const TreeRows rows{{writer, kTree.columns, side_of(*primary.Tree), side_of(*secondary.Tree)}};
  ByTreeRules policy(rows.primary, rows.secondary);
  walk(rows.primary.records(), policy, rows);
}

void keys(const GroupSlots& document, const std::function<void(std::string)>& take) {
  for_each_record(side_of(*document.Tree), [&](const Node& node) {
    if (!node.Tid.empty()) {
      take(std::string(node.Tid.bytes()) + "/" + std::to_string(node.Control));
    } else if (node.Control == kTableControl) {
      take("TableInternalCode " + std::string(node.TableInternalCode.bytes()));
    }
  });
}

}  // namespace

const Comparison kTreeComparison{u"Tree_Compared", write, keys};

}  // namespace trvtrout
