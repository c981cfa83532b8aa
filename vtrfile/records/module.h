#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Sections "Module" and "ControlTag".
namespace trvtrout::vtrfile {

struct MODULE_ITEM_STRUCT {
  std::int32_t Id;
  Text Description, ControlTag, ProductIDScipt, Password, Attributes, Text1;
  std::int16_t GlobalAttributes;
  Var Var1;
  Raw<8> Raw1;
  VTR_FIELDS(MODULE_ITEM_STRUCT, Id, Description, ControlTag, ProductIDScipt, Password, Attributes, Text1,
             GlobalAttributes, Var1, Raw1)
};

struct MODULE_STRUCT {
  std::int32_t Count;
  Array<MODULE_ITEM_STRUCT> Items;
  Var Var1, Var2, Var3, Var4, Var5, Var6;
  Raw<16> Raw1;
  Text Text1;
  VTR_FIELDS(MODULE_STRUCT, Count, Items, Var1, Var2, Var3, Var4, Var5, Var6, Raw1, Text1)
};

struct CONTROLTAG_ITEM_STRUCT {
  Text ControlTag, Tagvalue, Text1, Text2, Text3, Text4, Text5;
  Raw<24> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(CONTROLTAG_ITEM_STRUCT, ControlTag, Tagvalue, Text1, Text2, Text3, Text4, Text5, Raw1, Spare)
};

struct CONTROLTAG_STRUCT {
  std::int32_t Count;
  Array<CONTROLTAG_ITEM_STRUCT> Items;
  VarRun<10> Spare;
  VTR_FIELDS(CONTROLTAG_STRUCT, Count, Items, Spare)
};

}  // namespace trvtrout::vtrfile
