#pragma once

#include <string_view>
#include <tuple>

#include "vtrfile/document.h"

namespace trvtrout::vtrfile {

inline constexpr std::string_view kEndTag = "EOF";

struct SectionName {
  std::string_view tag;        // in front of the section
  std::string_view structure;  // in the lists of what was read, and of what was recovered
  bool in_old_format = true;
};

// A section and the slot that its record has in a document.
template <auto Member>
struct Section : SectionName {
  static constexpr auto kSlot = Member;
};

// The sections of a file in the order in which they are written.
inline constexpr std::tuple kSections{
    Section<&DocumentSlots::Schema>{{"Schema", "SCHEMA_STRUCT"}},
    Section<&DocumentSlots::Relation>{{"Relation", "RELATION_STRUCT"}},
    Section<&DocumentSlots::Hidden>{{"Hidden", "HIDETABLES_STRUCT"}},
    Section<&DocumentSlots::Tree>{{"TreeHierarchy", "TREE_HIERARCHY_STRUCT"}},
    Section<&DocumentSlots::Language>{{"Language", "LANGUAGE_STRUCT"}},
    Section<&DocumentSlots::Module>{{"Module", "MODULE_STRUCT"}},
    Section<&DocumentSlots::DataSend>{{"TarvelDefinitionHeader", "DATASEND_STRUCT"}},
    Section<&DocumentSlots::FieldMatches>{{"TarvelFieldMatchHeader", "FIELD_MATCHES_STRUCT"}},
    Section<&DocumentSlots::Extended>{{"Extended", "EXTENDED_STORAGE_STRUCT"}},
    Section<&DocumentSlots::IncludeFile>{{"IncludeFile", "INCLUDEFILE_STRUCT"}},
    Section<&DocumentSlots::ControlTag>{{"ControlTag", "CONTROLTAG_STRUCT"}},
    Section<&DocumentSlots::DSNList>{{"DSNList", "DSNMAIN_STRUCT"}},
    Section<&DocumentSlots::ImportFiles>{{"IncludeFileNew", "IMPORT_FILES", false}},
    Section<&DocumentSlots::ResidualTable>{{"ResidualTable", "RESIDUAL_TABLES_STRUCT", false}},
};

template <auto Member>
inline constexpr const SectionName& kSection = std::get<Section<Member>>(kSections);

// Calls visit(section) for each section, in the order in which they are written.
template <class Visit>
void for_each_section(Visit&& visit) {
  std::apply([&](const auto&... section) { (visit(section), ...); }, kSections);
}

}  // namespace trvtrout::vtrfile
