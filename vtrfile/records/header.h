#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// The header of a file and the tag that opens each section.
namespace trvtrout::vtrfile {

struct HEADER_STRUCT {
  Text Created, Modified, FileName, Version, Text1, Text2, Text3;
  VarRun<5> Spare;
  VTR_FIELDS(HEADER_STRUCT, Created, Modified, FileName, Version, Text1, Text2, Text3, Spare)
};

struct SECTION_TAG_STRUCT {
  Text Tag;
  std::int16_t Count;
  Text Text1, Text2;
  VTR_FIELDS(SECTION_TAG_STRUCT, Tag, Count, Text1, Text2)
};

}  // namespace trvtrout::vtrfile
