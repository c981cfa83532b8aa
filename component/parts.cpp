#include "component/parts.h"

namespace trvtrout {
namespace {

using Utility = TarvelVtrOut_InOut;
using vtrfile::ListId;

template <ListId... list>
constexpr ListId kLists[] = {list...};

constexpr Part kParts[] = {
    {"product",
     &kProductReport,
     &kProductComparison,
     &Utility::ASCII_Output_Product,
     &Utility::Compare_Product,
     {.name = u"Product",
      .report_moment = u"C6",
      .compared_moments = {u"D7", u"I7"},
      .first_item_row = 28,
      .rows_between = 6},
     kLists<ListId::kIncludeFiles, ListId::kModules>},
    {"table",
     &kTableReport,
     &kTableComparison,
     &Utility::ASCII_Output_Table,
     &Utility::Compare_Table,
     {.name = u"Tables", .first_item_row = 12},
     kLists<ListId::kTables>},
    {"field",
     &kFieldReport,
     &kFieldComparison,
     &Utility::ASCII_Output_Field,
     &Utility::Compare_Field,
     {.name = u"Fields", .report_digits = u"N", .compared_digits = u"O", .first_item_row = 8},
     kLists<ListId::kFields>},
    {"tree",
     &kTreeReport,
     &kTreeComparison,
     &Utility::ASCII_Output_Tree,
     &Utility::Compare_Tree,
     {.name = u"Tree", .compared_digits = u"G", .first_item_row = 12},
     kLists<ListId::kTree>},
    {"lookup",
     &kLookupReport,
     &kLookupComparison,
     &Utility::ASCII_Output_Lookup,
     &Utility::Compare_Lookup,
     {.name = u"Lookups", .first_item_row = 12},
     kLists<ListId::kLookups>},
    {"ctrltag",
     &kControlTagReport,
     &kControlTagComparison,
     &Utility::ASCII_Output_CtrlTag,
     &Utility::Compare_CtrlTag,
     {.name = u"Control Tags", .first_item_row = 10},
     kLists<ListId::kControlTags>},
    {"lang",
     &kLanguageReport,
     &kLanguageComparison,
     &Utility::ASCII_Output_Lang,
     &Utility::Compare_Lang,
     {.name = u"Languages", .first_item_row = 10},
     kLists<ListId::kLanguages>},
    {"dsend",
     &kDataSendReport,
     &kDataSendComparison,
     &Utility::ASCII_Output_DSend,
     &Utility::Compare_DSend,
     {.name = u"Data Send", .first_item_row = 12, .rows_between = 4},
     kLists<ListId::kDataSend>},
};

}  // namespace

std::span<const Part> document_parts() { return kParts; }

}  // namespace trvtrout
