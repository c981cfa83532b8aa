#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Lookups, in the sections "Schema" and "Hidden".
namespace trvtrout::vtrfile {

struct LOOKUP_LIST_A_ITEM_STRUCT {
  Text Text1, Text2, Text3, Text4, Text5, Text6, Text7;
  Raw<2> Raw1;
  VarRun<5> Spare;
  VTR_FIELDS(LOOKUP_LIST_A_ITEM_STRUCT, Text1, Text2, Text3, Text4, Text5, Text6, Text7, Raw1, Spare)
};

struct LOOKUP_LIST_A_STRUCT {
  Raw<12> Raw1;
  Text Text1;
  Array<LOOKUP_LIST_A_ITEM_STRUCT> Items;
  VarRun<5> Spare;
  VTR_FIELDS(LOOKUP_LIST_A_STRUCT, Raw1, Text1, Items, Spare)
};

struct LOOKUP_LIST_B_ITEM_STRUCT {
  Text Text1;
  Raw<4> Raw1;
  Text Text2, Text3;
  Raw<2> Raw2;
  VarRun<5> Spare;
  VTR_FIELDS(LOOKUP_LIST_B_ITEM_STRUCT, Text1, Raw1, Text2, Text3, Raw2, Spare)
};

struct LOOKUP_LIST_B_STRUCT {
  Raw<12> Raw1;
  Text Text1;
  Array<LOOKUP_LIST_B_ITEM_STRUCT> Items;
  Text Text2;
  VarRun<4> Spare;
  VTR_FIELDS(LOOKUP_LIST_B_STRUCT, Raw1, Text1, Items, Text2, Spare)
};

struct LOOKUPS_ITEM_STRUCT {
  Text Id, Code, Description, Text1;
  std::int16_t Type;
  LOOKUP_LIST_A_STRUCT ListA;
  LOOKUP_LIST_B_STRUCT ListB;
  Text Text2, Text3;
  Raw<4> Raw1;
  VarRun<4> Spare;
  VTR_FIELDS(LOOKUPS_ITEM_STRUCT, Id, Code, Description, Text1, Type, ListA, ListB, Text2, Text3, Raw1, Spare)
};

struct LOOKUPS_STRUCT {
  std::int32_t Current, Count, Max;
  Array<LOOKUPS_ITEM_STRUCT> Items;
  VTR_FIELDS(LOOKUPS_STRUCT, Current, Count, Max, Items)
};

}  // namespace trvtrout::vtrfile
