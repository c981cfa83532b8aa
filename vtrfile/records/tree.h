#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Section "TreeHierarchy".
namespace trvtrout::vtrfile {

struct TREE_HIERARCHY_ITEM_STRUCT {
  Text Description;
  std::int16_t Level, Control;
  Text Tid, TableInternalCode, Filter, ParentCodePath, CodePath, Text1, Text2;
  Raw<4> Raw1;
  VarRun<5> Spare;
  VTR_FIELDS(TREE_HIERARCHY_ITEM_STRUCT, Description, Level, Control, Tid, TableInternalCode, Filter, ParentCodePath,
             CodePath, Text1, Text2, Raw1, Spare)
};

struct TREE_HIERARCHY_STRUCT {
  std::int16_t Current, Count, Max;
  Array<TREE_HIERARCHY_ITEM_STRUCT> Items;
  VTR_FIELDS(TREE_HIERARCHY_STRUCT, Current, Count, Max, Items)
};

}  // namespace trvtrout::vtrfile
