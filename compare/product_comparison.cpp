#include "compare/list_comparison.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr ListComparison<INCLUDEFILE_STRUCT, INCLUDEFILE_ITEM_STRUCT> kIncludeFiles{
    .title = "INCLUDE FILE STRUCTURE (",
    .numbers = kCountCurrentMax<INCLUDEFILE_STRUCT>,
    .item_title = ",INCLUDEFILE ITEM STRUCTURE",
    .columns = kIncludeFileColumns,
    .key = [](const INCLUDEFILE_ITEM_STRUCT& file) { return MatchKey{.text = file.FileName.bytes()}; },
    .from = PartnerFrom::kWholeList,
    // A name that stands on both sides is one cell further to the right than its head and one that is labelled.
    .heads_lead = ",,",
    .single_lead = ",,",
};

constexpr ListComparison<MODULE_STRUCT, MODULE_ITEM_STRUCT> kModules{
    .title = "VITRION_MODULE STRUCTURE (",
    .numbers = kCount<MODULE_STRUCT>,
    .item_title = ",,VITRION_MODULE ITEM STRUCTURE",
    .columns = kModuleColumns,
    .key = [](const MODULE_ITEM_STRUCT& module) { return MatchKey{.number = module.Id}; },
    .from = PartnerFrom::kWholeList,
};

void write(ComparisonWriter& writer, const GroupSlots& primary, const GroupSlots& secondary) {
  ReportWriter& out = writer.out();
  writer.title("HEADER STRUCTURE (");
  writer.values<HEADER_STRUCT>(kHeaderLabels, *primary.Header, *secondary.Header);
  out.gap();
  writer.title("PRODUCTS STRUCTURE (");
  writer.values<PRODUCT_STRUCT>(kProductLabels, primary.Schema->Product, secondary.Schema->Product);
  out.gap();
  write_list(writer, kIncludeFiles, *primary.IncludeFile, *secondary.IncludeFile);
  out.gap();
  write_list(writer, kModules, *primary.Module, *secondary.Module);
}

void keys(const GroupSlots& document, const std::function<void(std::string)>& take) {
  for_each_record(side_of(*document.IncludeFile),
                  [&](const auto& file) { take("FileName " + std::string(kIncludeFiles.key(file).text)); });
  for_each_record(side_of(*document.Module),
                  [&](const auto& module) { take("Id " + std::to_string(kModules.key(module).number)); });
}

}  // namespace

const Comparison kProductComparison{u"Product_Compared", write, keys};

}  // namespace trvtrout
