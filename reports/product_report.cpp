#include "reports/detail_reports.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr ListBlock<INCLUDEFILE_STRUCT, INCLUDEFILE_ITEM_STRUCT> kIncludeFiles{
    .title = "INCLUDE FILE STRUCTURE",
    .numbers = kCountCurrentMax<INCLUDEFILE_STRUCT>,
    .id = ListId::kIncludeFiles,
    .uncounted = "",
    .item_title = ",INCLUDEFILE ITEM STRUCTURE",
    .columns = kIncludeFileColumns,
    .item_lead = ",,,",  // one cell to the right of the head
};

constexpr ListBlock<MODULE_STRUCT, MODULE_ITEM_STRUCT> kModules{
    .title = "VITRION_MODULE STRUCTURE",
    .numbers = kCount<MODULE_STRUCT>,
    .id = ListId::kModules,
    .uncounted = "",
    .item_title = ",VITRION_MODULE ITEM STRUCTURE",
    .columns = kModuleColumns,
};

void write(ReportWriter& out, const DocumentSlots& document) {
  out.line("HEADER STRUCTURE");
  out.labels<HEADER_STRUCT>(kHeaderLabels, *document.Header);
  out.gap();
  out.line("PRODUCTS STRUCTURE");
  out.labels<PRODUCT_STRUCT>(kProductLabels, document.Schema->Product);
  out.gap();
  write_list(out, kIncludeFiles, document, *document.IncludeFile);
  out.gap();
  write_list(out, kModules, document, *document.Module);
}

}  // namespace

const DetailReport kProductReport{u"Product", write};

}  // namespace trvtrout
