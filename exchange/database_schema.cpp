#include "exchange/database_schema.h"

#include <array>

#include "exchange/tables.h"
#include "vtrfile/records/language.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;

constexpr const char* kDocuments = R"(
CREATE TABLE IF NOT EXISTS documents (
  document INTEGER PRIMARY KEY, path TEXT NOT NULL UNIQUE, file TEXT NOT NULL, size INTEGER NOT NULL,
  sha256 TEXT NOT NULL, version TEXT NOT NULL, created TEXT NOT NULL, modified TEXT NOT NULL, product TEXT NOT NULL,
  product_description TEXT NOT NULL, product_version TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS language_names (number INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE);
)";

// Which lookup a field means its number says, and its code where it has no number.
constexpr const char* kLookupUses = R"(
CREATE VIEW IF NOT EXISTS lookup_uses AS
SELECT document, field, Tid, Fid, Lookups, LookupsID, lookup, lookup IS NOT NULL AS lookup_exists
FROM (SELECT f.document, f."row" AS field, t.Tid, f.Fid, f.Lookups, f.LookupsID,
             CASE WHEN f.LookupsID <> ''
                  THEN (SELECT min(l."row") FROM lookups l WHERE l.document = f.document AND l.Id = f.LookupsID)
                  ELSE (SELECT min(l."row") FROM lookups l WHERE l.document = f.document AND l.Code = f.Lookups)
             END AS lookup
      FROM fields f JOIN tables t ON t."row" = f.parent_row
      WHERE f.Lookups <> '' OR f.LookupsID <> '');
)";

const char* type_of(const Column& column) {
  switch (column.member.type->kind) {
    case Kind::kInt16:
    case Kind::kInt32:
    case Kind::kFlag:
      return "INTEGER";
    case Kind::kFloat:
      return "REAL";
    case Kind::kRaw:
    case Kind::kBytes:
      return "BLOB";
    default:
      return "TEXT";
  }
}

std::string create_table(const TableType& table) {
  std::string sql = "CREATE TABLE IF NOT EXISTS " + table.name +
                    " (\"row\" INTEGER PRIMARY KEY, document INTEGER NOT NULL REFERENCES documents ON DELETE CASCADE";
  if (table.parent) {
    sql +=
        ", parent_row INTEGER NOT NULL REFERENCES " + table.parent->name + " ON DELETE CASCADE, place INTEGER NOT NULL";
  }
  if (table.several_lists) sql += ", list TEXT NOT NULL";
  for (const Column& column : table.columns) sql += ", \"" + column.name + "\" " + type_of(column);
  return sql + ");\n";
}

struct Index {
  std::string name, table, columns;
};

// Of the rows of a document, of the items with a key, of the items of one list.
std::vector<Index> all_indexes() {
  std::vector<Index> indexes{{"lookups_by_code", "lookups", "document, Code"}};
  for (const auto& table : table_types()) {
    const std::string key = table->key ? ", \"" + table->key->name + '"' : "";
    indexes.push_back({table->name + "_by_document", table->name, "document" + key});
    if (table->parent) indexes.push_back({table->name + "_by_parent", table->name, "parent_row, place"});
  }
  return indexes;
}

// A language is one of a document when some text of it is.
std::string texts_missing() {
  std::string sql = "CREATE VIEW IF NOT EXISTS texts_missing AS\nWITH texts AS (";
  for (std::size_t place = 1; place <= vtrfile::kLanguageNames.size(); ++place) {
    const std::string number = std::to_string(place);
    if (place > 1) sql += "\n  UNION ALL ";
    sql += "SELECT document, \"row\", Code, " + number + " AS number, Texts_" + number + " AS text FROM languages";
  }
  return sql + R"(),
used AS (SELECT DISTINCT document, number FROM texts WHERE text <> '')
SELECT t.document, t."row" AS text, t.Code, n.name AS language
FROM texts t JOIN used u ON u.document = t.document AND u.number = t.number
JOIN language_names n ON n.number = t.number
WHERE t.text = '' AND EXISTS (SELECT 1 FROM texts o WHERE o."row" = t."row" AND o.text <> '');
)";
}

std::string fill_language_names() {
  std::string sql;
  int number = 0;
  for (const char* const name : vtrfile::kLanguageNames) {
    sql += "INSERT OR IGNORE INTO language_names VALUES (" + std::to_string(++number) + ", '" + name + "');\n";
  }
  return sql;
}

}  // namespace

std::string create_tables() {
  std::string sql = kDocuments;
  for (const auto& table : table_types()) sql += create_table(*table);
  return sql + fill_language_names();
}

std::string create_indexes_and_views() {
  std::string sql;
  for (const Index& index : all_indexes()) {
    sql += "CREATE INDEX IF NOT EXISTS " + index.name + " ON " + index.table + " (" + index.columns + ");\n";
  }
  return sql + kLookupUses + texts_missing();
}

std::string drop_indexes() {
  std::string sql;
  for (const Index& index : all_indexes()) sql += "DROP INDEX IF EXISTS " + index.name + ";\n";
  return sql;
}

}  // namespace trvtrout::exchange
