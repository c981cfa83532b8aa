#include "reports/detail_reports.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr auto kTreeNumbers = std::array{
    column<TREE_HIERARCHY_STRUCT, &TREE_HIERARCHY_STRUCT::Count>("Count:"),
    column<TREE_HIERARCHY_STRUCT, &TREE_HIERARCHY_STRUCT::Current>("Current:"),
    column<TREE_HIERARCHY_STRUCT, &TREE_HIERARCHY_STRUCT::Max>("Max:"),
};
constexpr ListBlock<TREE_HIERARCHY_STRUCT, TREE_HIERARCHY_ITEM_STRUCT> kTree{
    .title = "TREE HIERARCHY STRUCTURE",
    .numbers = kTreeNumbers,
    .uncounted = "",
    .item_title = ",TREE HIERARCHY ITEM STRUCTURE",
    .columns = kTreeColumns,
};

constexpr auto kControlTagNumbers = std::array{column<CONTROLTAG_STRUCT, &CONTROLTAG_STRUCT::Count>("Count:")};
constexpr ListBlock<CONTROLTAG_STRUCT, CONTROLTAG_ITEM_STRUCT> kControlTags{
    .title = "CONTROL TAG STRUCTURE",
    .numbers = kControlTagNumbers,
    .uncounted = "",
    .item_title = ",CONTROL TAG ITEM STRUCTURE",
    .columns = kControlTagColumns,
};

constexpr auto kLanguageNumbers = std::array{column<LANGUAGE_STRUCT, &LANGUAGE_STRUCT::Count>("Count:")};
constexpr ListBlock<LANGUAGE_STRUCT, LANGUAGE_ITEM_STRUCT> kLanguages{
    .title = "LANGUAGE STRUCTURE",
    .numbers = kLanguageNumbers,
    .uncounted = "",
    .item_title = ",LANGUAGE ITEM STRUCTURE",
    .columns = kLanguageColumns,
};

}  // namespace

const DetailReport kTreeReport{
    u"Tree", [](ReportWriter& out, const DocumentSlots& document) { write_list(out, kTree, *document.Tree); }};

const DetailReport kControlTagReport{u"CtrlTag", [](ReportWriter& out, const DocumentSlots& document) {
                                       write_list(out, kControlTags, *document.ControlTag);
                                     }};

const DetailReport kLanguageReport{
    u"Lang", [](ReportWriter& out, const DocumentSlots& document) { write_list(out, kLanguages, *document.Language); }};

}  // namespace trvtrout
