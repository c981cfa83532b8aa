#pragma once

#include <string_view>
#include <tuple>

#include "vtrfile/document.h"

namespace trvtrout::vtrfile {

inline constexpr std::string_view kEndTag = "EOF";

struct SectionName {
  std::string_view tag;        // in front of the section
  std::string_view structure;  // in the lists of what was read, and of what was recovered
  const char* title;           // for people
  bool in_old_format = true;
};

// A section and the slot that its record has in a document.
template <auto Member>
struct Section : SectionName {
  static constexpr auto kSlot = Member;
};

// The sections of a file in the order in which they are written.
inline constexpr std::tuple kSections{
    Section<&DocumentSlots::Schema>{{"Schema", "SCHEMA_STRUCT", "Schema"}},
    Section<&DocumentSlots::Relation>{{"Relation", "RELATION_STRUCT", "Relations"}},
    Section<&DocumentSlots::Hidden>{{"Hidden", "HIDETABLES_STRUCT", "Hidden tables and lookups"}},
    Section<&DocumentSlots::Tree>{{"TreeHierarchy", "TREE_HIERARCHY_STRUCT", "Tree"}},
    Section<&DocumentSlots::Language>{{"Language", "LANGUAGE_STRUCT", "Language texts"}},
    Section<&DocumentSlots::Module>{{"Module", "MODULE_STRUCT", "Modules"}},
    Section<&DocumentSlots::DataSend>{{"TarvelDefinitionHeader", "DATASEND_STRUCT", "Data send"}},
    Section<&DocumentSlots::FieldMatches>{{"TarvelFieldMatchHeader", "FIELD_MATCHES_STRUCT", "Field matches"}},
    Section<&DocumentSlots::Extended>{{"Extended", "EXTENDED_STORAGE_STRUCT", "Extended storage"}},
    Section<&DocumentSlots::IncludeFile>{{"IncludeFile", "INCLUDEFILE_STRUCT", "Include files"}},
    Section<&DocumentSlots::ControlTag>{{"ControlTag", "CONTROLTAG_STRUCT", "Control tags"}},
    Section<&DocumentSlots::DSNList>{{"DSNList", "DSNMAIN_STRUCT", "DSN list"}},
    Section<&DocumentSlots::ImportFiles>{{"IncludeFileNew", "IMPORT_FILES", "Import files", false}},
    Section<&DocumentSlots::ResidualTable>{{"ResidualTable", "RESIDUAL_TABLES_STRUCT", "Residual tables", false}},
};

template <auto Member>
inline constexpr const SectionName& kSection = std::get<Section<Member>>(kSections);

// Calls visit(section) for each section, in the order in which they are written.
template <class Visit>
void for_each_section(Visit&& visit) {
  std::apply([&](const auto&... section) { (visit(section), ...); }, kSections);
}

}  // namespace trvtrout::vtrfile
