#include "bench/document_maker.h"

namespace trvtrout::bench {

PRODUCT_STRUCT DocumentMaker::product() {
  PRODUCT_STRUCT product{};
  product.Code = text("PLANT");
  product.Description = description("Plant maintenance");
  product.SerialIndex = text("1001");
  product.Version = text("4.2");
  product.Database = text("Plant database");
  product.SQLInitialize = text("SET DATE_FORMAT 'MM/DD/YYYY',\r\nSORT BINARY");
  product.SQLControlTags = text("SELECT TAG, VALUE FROM CONTROL");
  product.SQLTermination = text("COMMIT");
  product.SQLUserList = text("SELECT USER_ID,\r\nUSER_NAME FROM USERS");
  return product;
}

FIELDS_ITEM_STRUCT DocumentMaker::field(int number, const std::string& table) {
  FIELDS_ITEM_STRUCT field{};
  const std::string code = capitals(name(2));
  field.Fid = text(numbered("F", number));
  field.Attribute = static_cast<std::int16_t>(below(8));
  field.InternalCode = text(code.substr(0, 4));
  field.SQLField = text(table + "." + code);
  field.Description = description(name(4));
  field.vbVarType = 8;
  field.Lenght = static_cast<float>(1 + below(255));
  field.SQLType = static_cast<std::int16_t>(below(13));
  field.Select = static_cast<std::int16_t>(below(2));
  field.Filter.FilterFlagY.value = one_in(4) ? -1 : 0;
  if (one_in(8)) field.Filter.FilterText = text("STATUS IN (1,2)");
  if (one_in(5)) {
    field.Lookups = text(name(2));
    field.LookupsID = text(numbered("L", 1 + below(1000)));
  }
  if (one_in(8)) field.SQLJoinClause = text("SITE.ID = " + table + ".SITE_ID");
  return field;
}

TABLES_STRUCT DocumentMaker::tables(int count, int fields_each) {
  TABLES_STRUCT tables{};
  fill(tables, count, [&](int number) {
    TABLES_ITEM_STRUCT table{};
    const std::string code = capitals(name(2));
    table.Tid = text(numbered("T", number));
    table.Name = description(name(3) + ", master");
    table.UserCode = text(code);
    table.InternalCode = text(code.substr(0, 3));
    table.RootWHERE = text(code + ".SITE_ID = :SITE");
    table.WHERE = text("ACTIVE = 'Y'\r\nAND DELETED = 'N'");
    table.JoinClause = text("SITE.ID = " + code + ".SITE_ID");
    fill(table.Fields, fields_each, [&](int place) { return field(place, code); });
    return table;
  });
  return tables;
}

LOOKUPS_STRUCT DocumentMaker::lookups(int count) {
  LOOKUPS_STRUCT lookups{};
  fill(lookups, count, [&](int number) {
    LOOKUPS_ITEM_STRUCT lookup{};
    lookup.Id = text(numbered("L", number));
    lookup.Code = text(capitals(name(2)));
    lookup.Description = description(name(4));
    lookup.Type = static_cast<std::int16_t>(below(5));
    lookup.ListA.Items = array(1 + below(3), [&](int) {
      LOOKUP_LIST_A_ITEM_STRUCT item{};
      item.Text1 = text(name(2));
      return item;
    });
    return lookup;
  });
  return lookups;
}

SCHEMA_STRUCT DocumentMaker::schema() {
  SCHEMA_STRUCT schema{};
  schema.Product = product();
  schema.Tables = tables(size_.tables, size_.fields_per_table);
  schema.Lookups = lookups(size_.lookups);
  return schema;
}

RELATION_SIDE_STRUCT DocumentMaker::relation_side() {
  RELATION_SIDE_STRUCT side{};
  side.Items = array(1 + below(2), [&](int) {
    RELATION_SIDE_ITEM_STRUCT item{};
    item.Text1 = text(name(2));
    item.Parts.Items = array(1 + below(2), [&](int) {
      RELATION_PART_ITEM_STRUCT part{};
      part.Text1 = text(name(2));
      return part;
    });
    return item;
  });
  return side;
}

RELATION_STRUCT DocumentMaker::relation() {
  RELATION_STRUCT relation{};
  fill(relation.Relations, size_.others, [&](int number) {
    RELATION_ITEM_STRUCT item{};
    item.Key = text(numbered("R", number));
    item.SideA = relation_side();
    item.SideB = relation_side();
    return item;
  });
  return relation;
}

HIDETABLES_STRUCT DocumentMaker::hidden() {
  constexpr int kFieldsEach = 20;
  constexpr int kLookupsEach = 5;
  HIDETABLES_STRUCT hidden{};
  hidden.Tables = tables(size_.others, kFieldsEach);
  fill(hidden.Lookups, size_.others, [&](int number) {
    HIDDEN_LOOKUP_ITEM_STRUCT item{};
    item.Key = text(numbered("H", number));
    item.Lookups = lookups(kLookupsEach);
    return item;
  });
  return hidden;
}

}  // namespace trvtrout::bench
