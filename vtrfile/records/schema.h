#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"
#include "vtrfile/records/lookups.h"
#include "vtrfile/records/tables.h"

// Section "Schema": the product, its tables and its lookups.
namespace trvtrout::vtrfile {

struct PRODUCT_LIST_ITEM_STRUCT {
  Text Text1, Text2, Text3;
  Raw<12> Raw1;
  VarRun<10> Spare;
  VTR_FIELDS(PRODUCT_LIST_ITEM_STRUCT, Text1, Text2, Text3, Raw1, Spare)
};

struct PRODUCT_LIST_STRUCT {
  Raw<8> Raw1;
  Array<PRODUCT_LIST_ITEM_STRUCT> Items;
  VTR_FIELDS(PRODUCT_LIST_STRUCT, Raw1, Items)
};

// What the product record holds in every format version.
struct PRODUCT_COMMON {
  Text Text1, Code, Description, SerialIndex, Version, Text2;
  Raw<2> Raw1;
  Text Text3, Text4, Database, Text5, Text6;
  Raw<4> Raw2;
  Text Text7, Text8;
  Raw<8> Raw3;
  Text SQLInitialize, SQLControlTags, SQLTermination, SQLUserList, Text9, Text10;
  Raw<8> Raw4;
  VTR_FIELDS(PRODUCT_COMMON, Text1, Code, Description, SerialIndex, Version, Text2, Raw1, Text3, Text4, Database, Text5,
             Text6, Raw2, Text7, Text8, Raw3, SQLInitialize, SQLControlTags, SQLTermination, SQLUserList, Text9, Text10,
             Raw4)
};

struct PRODUCT_STRUCT : PRODUCT_COMMON {
  Text Text11, Text12, Text13;
  Raw<20> Raw5;
  PRODUCT_LIST_STRUCT ProductList;
  Text Text14, Text15;
  VarRun<18> Spare;
  VTR_MORE_FIELDS(PRODUCT_COMMON, PRODUCT_STRUCT, Text11, Text12, Text13, Raw5, ProductList, Text14, Text15, Spare)
};

struct PRODUCT_STRUCT_OLD1 : PRODUCT_COMMON {
  VarRun<20> Spare;
  VTR_MORE_FIELDS(PRODUCT_COMMON, PRODUCT_STRUCT_OLD1, Spare)
};

template <class ProductRecord>
struct SCHEMA_WITH {
  ProductRecord Product;
  TABLES_STRUCT Tables;
  LOOKUPS_STRUCT Lookups;
  Text Text1, Text2, Text3;
  Raw<4> Raw1;
  VarRun<20> Spare;
  VTR_FIELDS(SCHEMA_WITH, Product, Tables, Lookups, Text1, Text2, Text3, Raw1, Spare)
};

struct SCHEMA_STRUCT : SCHEMA_WITH<PRODUCT_STRUCT> {};

// Section "Schema" of format version 01.00.00.
struct SCHEMA_STRUCT_OLD1 : SCHEMA_WITH<PRODUCT_STRUCT_OLD1> {};

}  // namespace trvtrout::vtrfile
