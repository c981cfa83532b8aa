#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"
#include "vtrfile/records/lookups.h"
#include "vtrfile/records/tables.h"

// Section "Hidden".
namespace trvtrout::vtrfile {

struct HIDDEN_LOOKUP_ITEM_STRUCT {
  Text Key;
  LOOKUPS_STRUCT Lookups;
  Text Text1, Text2, Text3;
  Raw<4> Raw1;
  VarRun<20> Spare;
  VTR_FIELDS(HIDDEN_LOOKUP_ITEM_STRUCT, Key, Lookups, Text1, Text2, Text3, Raw1, Spare)
};

struct HIDDEN_LOOKUP_LIST_STRUCT {
  Raw<2> Raw1;
  std::int16_t Count;
  Raw<2> Raw2;
  Array<HIDDEN_LOOKUP_ITEM_STRUCT> Items;
  VTR_FIELDS(HIDDEN_LOOKUP_LIST_STRUCT, Raw1, Count, Raw2, Items)
};

struct HIDETABLES_STRUCT {
  TABLES_STRUCT Tables;
  HIDDEN_LOOKUP_LIST_STRUCT Lookups;
  Text Text1, Text2, Text3;
  Raw<4> Raw1;
  VarRun<20> Spare;
  VTR_FIELDS(HIDETABLES_STRUCT, Tables, Lookups, Text1, Text2, Text3, Raw1, Spare)
};

}  // namespace trvtrout::vtrfile
