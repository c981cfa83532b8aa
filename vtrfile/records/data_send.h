#pragma once

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Section "TarvelDefinitionHeader": definitions of what is sent, each a header and a tree of nodes.
namespace trvtrout::vtrfile {

struct DATASEND_FILE_STRUCT {
  Text FileHeader, Version, Text1;
  Raw<8> Raw1;
  Text Text2;
  Raw<8> Raw2;
  Text Text3;
  Raw<2> Raw3;
  Var Var1, Var2;
  VTR_FIELDS(DATASEND_FILE_STRUCT, FileHeader, Version, Text1, Raw1, Text2, Raw2, Text3, Raw3, Var1, Var2)
};

struct DATASEND_HEADER_STRUCT {
  std::int16_t TypeCategory;
  float Version;
  Text StructureName;
  std::int32_t Number1;
  Text Text1, Text2;
  Var Var1, VBSInfo, Var2, Var3;
  VTR_FIELDS(DATASEND_HEADER_STRUCT, TypeCategory, Version, StructureName, Number1, Text1, Text2, Var1, VBSInfo, Var2,
             Var3)
};

struct DATASEND_NODE_STRUCT {
  std::int32_t Index, ParentIndex;
  Text LanguageKey, Description;
  Flag Visible;
  Text XMLTag;
  Flag IsHeaderOnly, IsDriver;
  Text DefaultValue;
  std::int16_t MinOccur, MaxOccur, DataType, MaxLength, Precision;
  Text OutputFormat, VitrionCodePathFixedlookup, VitrionTableFixedLookup, IsKey, VitrionCodePathLookup,
      VitrionTableLookup;
  Var Var1, Var2, Var3, Var4;
  VTR_FIELDS(DATASEND_NODE_STRUCT, Index, ParentIndex, LanguageKey, Description, Visible, XMLTag, IsHeaderOnly,
             IsDriver, DefaultValue, MinOccur, MaxOccur, DataType, MaxLength, Precision, OutputFormat,
             VitrionCodePathFixedlookup, VitrionTableFixedLookup, IsKey, VitrionCodePathLookup, VitrionTableLookup,
             Var1, Var2, Var3, Var4)
};

struct DATASEND_ITEM_STRUCT {
  DATASEND_HEADER_STRUCT Header;
  std::int16_t Count;
  Array<DATASEND_NODE_STRUCT> Nodes;
  Var Var1, Var2, Var3;
  VTR_FIELDS(DATASEND_ITEM_STRUCT, Header, Count, Nodes, Var1, Var2, Var3)
};

struct DATASEND_EXTRA_ITEM_STRUCT {
  Text Text1, Text2;
  Var Var1, Var2, Var3, Var4, Var5, Var6, Var7, Var8;
  VarRun<30> Spare;
  VTR_FIELDS(DATASEND_EXTRA_ITEM_STRUCT, Text1, Text2, Var1, Var2, Var3, Var4, Var5, Var6, Var7, Var8, Spare)
};

struct DATASEND_EXTRA_STRUCT {
  Raw<2> Raw1;
  Array<DATASEND_EXTRA_ITEM_STRUCT> Items;
  VTR_FIELDS(DATASEND_EXTRA_STRUCT, Raw1, Items)
};

struct DATASEND_STRUCT {
  DATASEND_FILE_STRUCT File;
  std::int16_t Count;
  Array<DATASEND_ITEM_STRUCT> Items;
  Array<Text> TextList;
  Var Var1, Var2, Var3;
  Array<DATASEND_EXTRA_STRUCT> ExtraList;
  VTR_FIELDS(DATASEND_STRUCT, File, Count, Items, TextList, Var1, Var2, Var3, ExtraList)
};

}  // namespace trvtrout::vtrfile
