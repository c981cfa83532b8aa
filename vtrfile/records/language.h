#pragma once

#include <array>

#include "vtrfile/elements.h"
#include "vtrfile/fields.h"

// Section "Language": each item is one text in all its languages.
namespace trvtrout::vtrfile {

// Of the texts of an item, in their order.
inline constexpr std::array<const char*, 16> kLanguageNames = {
    "English", "Japanese",   "Spanish", "German",     "French",  "Italian", "Chinese S", "Chinese T",
    "Korean",  "Indonesian", "Greek",   "Portuguese", "Other 1", "Other 2", "Other 3",   "Other 4"};

struct LANGUAGE_ITEM_STRUCT {
  Text Code, Text1;
  std::int16_t Category;
  std::array<Text, 16> Texts;
  std::int16_t GlobalAttribute;
  VTR_FIELDS(LANGUAGE_ITEM_STRUCT, Code, Text1, Category, Texts, GlobalAttribute)
};

struct LANGUAGE_COLUMN_STRUCT {
  Text Text1, Text2, Text3;
  Raw<8> Raw1;
  Var Var1, Var2;
  VTR_FIELDS(LANGUAGE_COLUMN_STRUCT, Text1, Text2, Text3, Raw1, Var1, Var2)
};

struct LANGUAGE_STRUCT {
  std::int32_t Count;
  Array<LANGUAGE_ITEM_STRUCT> Items;
  std::array<LANGUAGE_COLUMN_STRUCT, 16> Columns;
  Raw<8> Raw1;
  Text Text1;
  Var Var1, Var2, Var3;
  VTR_FIELDS(LANGUAGE_STRUCT, Count, Items, Columns, Raw1, Text1, Var1, Var2, Var3)
};

}  // namespace trvtrout::vtrfile
