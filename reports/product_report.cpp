#include "reports/detail_reports.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr auto kHeaderLabels = std::array{column<HEADER_STRUCT, &HEADER_STRUCT::Modified>("Last Modified:")};

constexpr auto kIncludeFileNumbers = std::array{
    column<INCLUDEFILE_STRUCT, &INCLUDEFILE_STRUCT::Count>("Count:"),
    column<INCLUDEFILE_STRUCT, &INCLUDEFILE_STRUCT::Current>("Current:"),
    column<INCLUDEFILE_STRUCT, &INCLUDEFILE_STRUCT::Max>("Max:"),
};
constexpr ListBlock<INCLUDEFILE_STRUCT, INCLUDEFILE_ITEM_STRUCT> kIncludeFiles{
    .title = "INCLUDE FILE STRUCTURE",
    .numbers = kIncludeFileNumbers,
    .uncounted = "",
    .item_title = ",INCLUDEFILE ITEM STRUCTURE",
    .columns = kIncludeFileColumns,
    .item_lead = ",,,",  // one cell to the right of the head
};

constexpr auto kModuleNumbers = std::array{column<MODULE_STRUCT, &MODULE_STRUCT::Count>("Count:")};
constexpr ListBlock<MODULE_STRUCT, MODULE_ITEM_STRUCT> kModules{
    .title = "VITRION_MODULE STRUCTURE",
    .numbers = kModuleNumbers,
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
  write_list(out, kIncludeFiles, *document.IncludeFile);
  out.gap();
  write_list(out, kModules, *document.Module);
}

}  // namespace

const DetailReport kProductReport{u"Product", write};

}  // namespace trvtrout
