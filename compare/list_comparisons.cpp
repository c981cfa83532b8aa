#include "compare/list_comparison.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

template <class Item, Text Item::*Key>
MatchKey text_key(const Item& item) {
  return {.text = (item.*Key).bytes()};
}

constexpr auto kComparedTableColumns = compared_columns<kTableColumns>();
constexpr ListComparison<TABLES_STRUCT, TABLES_ITEM_STRUCT> kTables{
    .title = "TABLES STRUCTURE (",
    .numbers = kCountCurrentMax<TABLES_STRUCT>,
    .item_title = ",,TABLES ITEM STRUCTURE,,,,,,,,,FIELDS STRUCTURE",
    .columns = kComparedTableColumns,
    .key = text_key<TABLES_ITEM_STRUCT, &TABLES_ITEM_STRUCT::Tid>,
    .heads_tail = ",",
};

constexpr ListComparison<LOOKUPS_STRUCT, LOOKUPS_ITEM_STRUCT> kLookups{
    .title = "LOOKUPS STRUCTURE (",
    .numbers = kCountCurrentMax<LOOKUPS_STRUCT>,
    .item_title = ",,LOOKUPS ITEM STRUCTURE",
    .columns = kLookupColumns,
    .key = text_key<LOOKUPS_ITEM_STRUCT, &LOOKUPS_ITEM_STRUCT::Id>,
};

constexpr ListComparison<CONTROLTAG_STRUCT, CONTROLTAG_ITEM_STRUCT> kControlTags{
    .title = "CONTROL TAG STRUCTURE (",
    .numbers = kCount<CONTROLTAG_STRUCT>,
    .item_title = ",,CONTROL TAG ITEM STRUCTURE,",
    .columns = kControlTagColumns,
    .key = text_key<CONTROLTAG_ITEM_STRUCT, &CONTROLTAG_ITEM_STRUCT::ControlTag>,
};

constexpr ListComparison<LANGUAGE_STRUCT, LANGUAGE_ITEM_STRUCT> kLanguages{
    .title = "LANGUAGE STRUCTURE (",
    .numbers = kCount<LANGUAGE_STRUCT>,
    .item_title = ",,LANGUAGE ITEM STRUCTURE,",
    .columns = kLanguageColumns,
    .key = text_key<LANGUAGE_ITEM_STRUCT, &LANGUAGE_ITEM_STRUCT::Code>,
};

// The comparison of one list of a document: `list_of` finds it.
template <const auto& block, auto list_of>
constexpr Comparison list_comparison(std::u16string_view desc_name) {
  return {desc_name,
          [](ComparisonWriter& writer, const GroupSlots& primary, const GroupSlots& secondary) {
            write_list(writer, block, list_of(primary), list_of(secondary));
          },
          [](const GroupSlots& document, const std::function<void(std::string)>& take) {
            for_each_record(side_of(list_of(document)),
                            [&](const auto& item) { take(std::string(block.key(item).text)); });
          }};
}

constexpr auto tables_of = [](const GroupSlots& document) -> const auto& { return document.Schema->Tables; };
constexpr auto lookups_of = [](const GroupSlots& document) -> const auto& { return document.Schema->Lookups; };
constexpr auto control_tags_of = [](const GroupSlots& document) -> const auto& { return *document.ControlTag; };
constexpr auto languages_of = [](const GroupSlots& document) -> const auto& { return *document.Language; };

}  // namespace

const Comparison kTableComparison = list_comparison<kTables, tables_of>(u"Tables_Compared");
const Comparison kLookupComparison = list_comparison<kLookups, lookups_of>(u"Lookups_Compared");
const Comparison kControlTagComparison = list_comparison<kControlTags, control_tags_of>(u"ControlTag_Compared");
const Comparison kLanguageComparison = list_comparison<kLanguages, languages_of>(u"Language_Compared");

}  // namespace trvtrout
