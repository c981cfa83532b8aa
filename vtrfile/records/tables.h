#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Tables and their fields, in the sections "Schema" and "Hidden".
namespace trvtrout::vtrfile {

struct TABLE_EXTRA_STRUCT {
  Raw<18> Raw1;
  Text Text1;
  VarRun<4> Spare;
  VTR_FIELDS(TABLE_EXTRA_STRUCT, Raw1, Text1, Spare)
};

struct FIELD_FILTER_STRUCT {
  Flag FilterFlagY, FilterFlagYDL, FilterFlagYSL, FilterFlagCur, FilterFlagSum, FilterFlag999;
  Raw<4> Raw1;
  Text FilterText, Text1;
  Raw<8> Raw2;
  Text Text2, Text3;
  VarRun<5> Spare;
  VTR_FIELDS(FIELD_FILTER_STRUCT, FilterFlagY, FilterFlagYDL, FilterFlagYSL, FilterFlagCur, FilterFlagSum,
             FilterFlag999, Raw1, FilterText, Text1, Raw2, Text2, Text3, Spare)
};

struct FIELDS_ITEM_STRUCT {
  Text Fid;
  std::int16_t Attribute;
  Text InternalCode, SQLField, Description;
  std::int16_t vbVarType;
  float Lenght;
  std::int16_t SQLType, Select;
  FIELD_FILTER_STRUCT Filter;
  Text Text1, Lookups, LookupsID, SQLJoinClause, Text2, Text3, Text4, Text5, Text6, Text7, Text8, Text9, Text10;
  Raw<4> Raw1;
  Text Text11, Text12;
  VarRun<3> Spare;
  VTR_FIELDS(FIELDS_ITEM_STRUCT, Fid, Attribute, InternalCode, SQLField, Description, vbVarType, Lenght, SQLType,
             Select, Filter, Text1, Lookups, LookupsID, SQLJoinClause, Text2, Text3, Text4, Text5, Text6, Text7, Text8,
             Text9, Text10, Raw1, Text11, Text12, Spare)
};

struct FIELDS_STRUCT {
  std::int16_t Current, Count, Max;
  Array<FIELDS_ITEM_STRUCT> Items;
  VTR_FIELDS(FIELDS_STRUCT, Current, Count, Max, Items)
};

struct TABLE_LIST_A_SUB_ITEM_STRUCT {
  Raw<2> Raw1;
  Text Text1, Text2, Text3;
  Raw<2> Raw2;
  VarRun<5> Spare;
  VTR_FIELDS(TABLE_LIST_A_SUB_ITEM_STRUCT, Raw1, Text1, Text2, Text3, Raw2, Spare)
};

struct TABLE_LIST_A_SUB_STRUCT {
  Raw<6> Raw1;
  Array<TABLE_LIST_A_SUB_ITEM_STRUCT> Items;
  VTR_FIELDS(TABLE_LIST_A_SUB_STRUCT, Raw1, Items)
};

struct TABLE_LIST_A_ITEM_STRUCT {
  Text Text1, Text2, Text3, Text4;
  TABLE_LIST_A_SUB_STRUCT SubList;
  Text Text5, Text6;
  Raw<2> Raw1;
  VarRun<5> Spare;
  VTR_FIELDS(TABLE_LIST_A_ITEM_STRUCT, Text1, Text2, Text3, Text4, SubList, Text5, Text6, Raw1, Spare)
};

struct TABLE_LIST_A_STRUCT {
  Raw<6> Raw1;
  Array<TABLE_LIST_A_ITEM_STRUCT> Items;
  VTR_FIELDS(TABLE_LIST_A_STRUCT, Raw1, Items)
};

struct TABLE_LIST_B_ITEM_STRUCT {
  Text Text1, Text2, Text3, Text4, Text5, Text6, Text7, Text8, Text9, Text10, Text11, Text12, Text13, Text14;
  Raw<20> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(TABLE_LIST_B_ITEM_STRUCT, Text1, Text2, Text3, Text4, Text5, Text6, Text7, Text8, Text9, Text10, Text11,
             Text12, Text13, Text14, Raw1, Spare)
};

struct TABLE_LIST_B_STRUCT {
  Raw<12> Raw1;
  Array<TABLE_LIST_B_ITEM_STRUCT> Items;
  VTR_FIELDS(TABLE_LIST_B_STRUCT, Raw1, Items)
};

struct TABLES_ITEM_STRUCT {
  Text Tid;
  std::int16_t Attribute;
  Text Name, Text1, UserCode, InternalCode;
  Raw<4> Raw1;
  TABLE_EXTRA_STRUCT Extra;
  Text RootWHERE, WHERE, Text2, JoinClause, Text3, Text4, Text5;
  FIELDS_STRUCT Fields;
  TABLE_LIST_A_STRUCT ListA;
  TABLE_LIST_B_STRUCT ListB;
  Raw<8> Raw2;
  Text Text6, Text7, Text8;
  Raw<4> Raw3;
  Text Text9;
  VarRun<9> Spare;
  VTR_FIELDS(TABLES_ITEM_STRUCT, Tid, Attribute, Name, Text1, UserCode, InternalCode, Raw1, Extra, RootWHERE, WHERE,
             Text2, JoinClause, Text3, Text4, Text5, Fields, ListA, ListB, Raw2, Text6, Text7, Text8, Raw3, Text9,
             Spare)
};

struct TABLES_STRUCT {
  std::int16_t Current, Count, Max;
  Array<TABLES_ITEM_STRUCT> Items;
  VTR_FIELDS(TABLES_STRUCT, Current, Count, Max, Items)
};

}  // namespace trvtrout::vtrfile
