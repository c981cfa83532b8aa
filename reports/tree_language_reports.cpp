#include "reports/detail_reports.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr ListBlock<TREE_HIERARCHY_STRUCT, TREE_HIERARCHY_ITEM_STRUCT> kTree{
    .title = "TREE HIERARCHY STRUCTURE",
    .numbers = kCountCurrentMax<TREE_HIERARCHY_STRUCT>,
    .id = ListId::kTree,
    .uncounted = "",
    .item_title = ",TREE HIERARCHY ITEM STRUCTURE",
    .columns = kTreeColumns,
};

constexpr ListBlock<CONTROLTAG_STRUCT, CONTROLTAG_ITEM_STRUCT> kControlTags{
    .title = "CONTROL TAG STRUCTURE",
    .numbers = kCount<CONTROLTAG_STRUCT>,
    .id = ListId::kControlTags,
    .uncounted = "",
    .item_title = ",CONTROL TAG ITEM STRUCTURE",
    .columns = kControlTagColumns,
};

constexpr ListBlock<LANGUAGE_STRUCT, LANGUAGE_ITEM_STRUCT> kLanguages{
    .title = "LANGUAGE STRUCTURE",
    .numbers = kCount<LANGUAGE_STRUCT>,
    .id = ListId::kLanguages,
    .uncounted = "",
    .item_title = ",LANGUAGE ITEM STRUCTURE",
    .columns = kLanguageColumns,
};

}  // namespace

const DetailReport kTreeReport{u"Tree", [](ReportWriter& out, const DocumentSlots& document) {
                                 write_list(out, kTree, document, *document.Tree);
                               }};

const DetailReport kControlTagReport{u"CtrlTag", [](ReportWriter& out, const DocumentSlots& document) {
                                       write_list(out, kControlTags, document, *document.ControlTag);
                                     }};

const DetailReport kLanguageReport{u"Lang", [](ReportWriter& out, const DocumentSlots& document) {
                                     write_list(out, kLanguages, document, *document.Language);
                                   }};

}  // namespace trvtrout
