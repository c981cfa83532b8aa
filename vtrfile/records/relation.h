#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Section "Relation".
namespace trvtrout::vtrfile {

struct RELATION_PART_ITEM_STRUCT {
  Text Text1, Text2, Text3, Text4, Text5, Text6;
  Raw<4> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(RELATION_PART_ITEM_STRUCT, Text1, Text2, Text3, Text4, Text5, Text6, Raw1, Spare)
};

struct RELATION_PART_STRUCT {
  Raw<6> Raw1;
  Array<RELATION_PART_ITEM_STRUCT> Items;
  VTR_FIELDS(RELATION_PART_STRUCT, Raw1, Items)
};

struct RELATION_SIDE_ITEM_STRUCT {
  Raw<2> Raw1;
  Text Text1, Text2, Text3;
  RELATION_PART_STRUCT Parts;
  Text Text4, Text5, Text6, Text7;
  Raw<4> Raw2;
  VarRun<10> Spare;
  VTR_FIELDS(RELATION_SIDE_ITEM_STRUCT, Raw1, Text1, Text2, Text3, Parts, Text4, Text5, Text6, Text7, Raw2, Spare)
};

struct RELATION_SIDE_STRUCT {
  Raw<6> Raw1;
  Array<RELATION_SIDE_ITEM_STRUCT> Items;
  VTR_FIELDS(RELATION_SIDE_STRUCT, Raw1, Items)
};

struct RELATION_ITEM_STRUCT {
  Text Key;
  RELATION_SIDE_STRUCT SideA, SideB;
  Text Text1, Text2, Text3, Text4;
  Raw<4> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(RELATION_ITEM_STRUCT, Key, SideA, SideB, Text1, Text2, Text3, Text4, Raw1, Spare)
};

struct RELATION_LIST_STRUCT {
  Raw<2> Raw1;
  std::int16_t Count;
  Raw<2> Raw2;
  Array<RELATION_ITEM_STRUCT> Items;
  VTR_FIELDS(RELATION_LIST_STRUCT, Raw1, Count, Raw2, Items)
};

struct RELATION_STRUCT {
  RELATION_LIST_STRUCT Relations;
  Text Text1, Text2, Text3;
  Raw<4> Raw1;
  VarRun<20> Spare;
  VTR_FIELDS(RELATION_STRUCT, Relations, Text1, Text2, Text3, Raw1, Spare)
};

}  // namespace trvtrout::vtrfile
