#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Sections "TarvelFieldMatchHeader", "Extended", "IncludeFile", "DSNList", "ResidualTable" and "IncludeFileNew".
namespace trvtrout::vtrfile {

struct FIELD_MATCH_ITEM_STRUCT {
  Text Key, Text1;
  VarRun<20> Spare;
  VTR_FIELDS(FIELD_MATCH_ITEM_STRUCT, Key, Text1, Spare)
};

struct FIELD_MATCHES_STRUCT {
  Array<FIELD_MATCH_ITEM_STRUCT> Items;
  std::int16_t Count;
  VarRun<20> Spare;
  VTR_FIELDS(FIELD_MATCHES_STRUCT, Items, Count, Spare)
};

struct EXTENDED_STORAGE_ITEM_STRUCT {
  Raw<10> Raw1;
  Text Key, Text1, Text2, Text3, Text4;
  Raw<10> Raw2;
  Raw<20> Raw3;
  VarRun<80> Spare;
  VTR_FIELDS(EXTENDED_STORAGE_ITEM_STRUCT, Raw1, Key, Text1, Text2, Text3, Text4, Raw2, Raw3, Spare)
};

struct EXTENDED_STORAGE_STRUCT {
  std::int32_t Count;
  Raw<4> Raw1;
  Array<EXTENDED_STORAGE_ITEM_STRUCT> Items;
  VTR_FIELDS(EXTENDED_STORAGE_STRUCT, Count, Raw1, Items)
};

struct INCLUDEFILE_ITEM_STRUCT {
  Text FileName, Text1, Text2, Text3, Text4, Text5, Text6;
  Raw<24> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(INCLUDEFILE_ITEM_STRUCT, FileName, Text1, Text2, Text3, Text4, Text5, Text6, Raw1, Spare)
};

struct INCLUDEFILE_STRUCT {
  std::int32_t Count, Current, Max;
  Array<INCLUDEFILE_ITEM_STRUCT> Items;
  VarRun<10> Spare;
  VTR_FIELDS(INCLUDEFILE_STRUCT, Count, Current, Max, Items, Spare)
};

struct DSN_ENTRY_STRUCT {
  Text Text1, Text2;
  Raw<4> Raw1;
  Text Text3, Text4, Text5, Text6, Text7;
  Raw<4> Raw2;
  Text Text8, Text9;
  Raw<6> Raw3;
  Text Text10, Text11, Text12;
  Raw<6> Raw4;
  Raw<12> Raw5;
  VarRun<10> Spare;
  VTR_FIELDS(DSN_ENTRY_STRUCT, Text1, Text2, Raw1, Text3, Text4, Text5, Text6, Text7, Raw2, Text8, Text9, Raw3, Text10,
             Text11, Text12, Raw4, Raw5, Spare)
};

struct DSN_ENTRY_LIST_STRUCT {
  Raw<2> Raw1;
  Array<DSN_ENTRY_STRUCT> Items;
  VTR_FIELDS(DSN_ENTRY_LIST_STRUCT, Raw1, Items)
};

struct DSN_ITEM_STRUCT {
  Text Key;
  DSN_ENTRY_LIST_STRUCT Entries;
  Raw<4> Raw1;
  Text Text1, Text2;
  Raw<12> Raw2;
  VarRun<5> Spare;
  VTR_FIELDS(DSN_ITEM_STRUCT, Key, Entries, Raw1, Text1, Text2, Raw2, Spare)
};

struct DSNMAIN_STRUCT {
  std::int16_t Count;
  Array<DSN_ITEM_STRUCT> Items;
  VTR_FIELDS(DSNMAIN_STRUCT, Count, Items)
};

struct RESIDUAL_TABLE_ITEM_STRUCT {
  Text Text1, Key;
  Raw<20> Raw1;
  Text Text2, Text3, Text4, Text5, Text6, Text7;
  Raw<6> Raw2;
  Raw<12> Raw3;
  VarRun<9> Spare;
  VTR_FIELDS(RESIDUAL_TABLE_ITEM_STRUCT, Text1, Key, Raw1, Text2, Text3, Text4, Text5, Text6, Text7, Raw2, Raw3, Spare)
};

struct RESIDUAL_TABLES_STRUCT {
  std::int32_t Count;
  Raw<4> Raw1;
  Array<RESIDUAL_TABLE_ITEM_STRUCT> Items;
  VTR_FIELDS(RESIDUAL_TABLES_STRUCT, Count, Raw1, Items)
};

struct IMPORT_FILE_ITEM_STRUCT {
  Text Key, Text1, Text2, Text3, Text4, Text5;
  Array<unsigned char> Data;
  Text Text6, Text7, Text8;
  VTR_FIELDS(IMPORT_FILE_ITEM_STRUCT, Key, Text1, Text2, Text3, Text4, Text5, Data, Text6, Text7, Text8)
};

struct IMPORT_FILES {
  std::int16_t Count;
  Array<IMPORT_FILE_ITEM_STRUCT> Items;
  Text Text1, Text2, Text3, Text4, Text5;
  VTR_FIELDS(IMPORT_FILES, Count, Items, Text1, Text2, Text3, Text4, Text5)
};

}  // namespace trvtrout::vtrfile
