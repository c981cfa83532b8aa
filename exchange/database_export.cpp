#include "exchange/database_export.h"

#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <vector>

#include "exchange/database_schema.h"
#include "exchange/json_values.h"
#include "text/utf8.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;
using vtrfile::Value;
using Lifetime = Statement::Lifetime;

// "vtr1": what a database is marked with, so that nothing is put into one that holds something else.
constexpr std::int64_t kApplication = 0x76747231;
constexpr std::int64_t kSchemaVersion = 1;

std::span<const unsigned char> bytes_of(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// The number that is written with the same digits: 0.1 is 0.1 in a query too.
double as_written(float number) {
  if (number == std::trunc(number)) return number;
  std::array<char, 32> digits;
  const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  double same = 0;
  std::from_chars(digits.data(), written.ptr, same);
  return same;
}

std::string insert_into(const TableType& table) {
  std::string sql = "INSERT INTO " + table.name + " VALUES (?, ?";
  if (table.parent) sql += ", ?, ?";
  if (table.several_lists) sql += ", ?";
  for (std::size_t column = 0; column < table.columns.size(); ++column) sql += ", ?";
  return sql + ')';
}

}  // namespace

// Puts the rows of one table. Most columns of a row are empty, as they were in the row before: those are bound once.
class DatabaseExport::RowInserter {
 public:
  RowInserter(Database& database, const TableType& table, Texts& texts)
      : insert_(database, insert_into(table)),
        texts_(texts),
        last_(database.number("SELECT max(\"row\") FROM " + table.name)),
        is_empty_(table.columns.size()) {}

  std::int64_t insert(std::int64_t document, const Row& row) {
    int at = 0;
    insert_.bind(++at, ++last_);
    insert_.bind(++at, document);
    if (row.table.parent) {
      insert_.bind(++at, row.parent);
      insert_.bind(++at, std::int64_t{row.place});
    }
    if (row.table.several_lists) insert_.bind_text(++at, row.list->path, Lifetime::kStays);
    for (std::size_t column = 0; column < row.table.columns.size(); ++column) {
      bind(++at, column, value_in(row.value, row.table.columns[column]));
    }
    insert_.run();
    return last_;
  }

 private:
  void bind(int at, std::size_t column, Value value);
  void bind_text(int at, std::size_t column, std::string_view bytes);
  void bind_bytes(int at, Value value);
  void bind_json(int at, std::size_t column, Value value, bool is_empty);
  // False when the column's parameter has the value of an empty one already.
  bool becomes_empty(std::size_t column) {
    const bool becomes = !is_empty_[column];
    is_empty_[column] = true;
    return becomes;
  }

  Statement insert_;
  Texts& texts_;
  std::int64_t last_;
  std::vector<char> is_empty_;
  std::string made_;
  JsonWriter json_{[this](std::string_view piece) { made_ += piece; }};
};

void DatabaseExport::RowInserter::bind(int at, std::size_t column, Value value) {
  switch (value.kind()) {
    case Kind::kInt16:
    case Kind::kInt32:
      return insert_.bind(at, std::int64_t{value.integer()});
    case Kind::kFlag:
      return insert_.bind(at, std::int64_t{value.flag()});
    case Kind::kFloat: {
      const float number = value.real();
      if (!std::isnan(number)) return insert_.bind(at, as_written(number));
      return insert_.bind_blob(at, {reinterpret_cast<const unsigned char*>(&number), sizeof number}, Lifetime::kCopied);
    }
    case Kind::kText:
      return bind_text(at, column, value.text().bytes());
    case Kind::kRaw:
      return insert_.bind_blob(at, value.bytes(), Lifetime::kStays);
    case Kind::kBytes:
      return bind_bytes(at, value);
    case Kind::kVariant:
      return bind_json(at, column, value, value.variant().empty());
    default:
      return bind_json(at, column, value, value.run() == nullptr);
  }
}

void DatabaseExport::RowInserter::bind_text(int at, std::size_t column, std::string_view bytes) {
  if (bytes.empty()) {
    if (becomes_empty(column)) insert_.bind_text(at, {}, Lifetime::kStays);
    return;
  }
  is_empty_[column] = false;
  const auto utf8 = texts_.to_utf8(bytes);
  if (!utf8) return insert_.bind_blob(at, bytes_of(bytes), Lifetime::kStays);
  insert_.bind_text(at, *utf8, utf8->data() == bytes.data() ? Lifetime::kStays : Lifetime::kCopied);
}

void DatabaseExport::RowInserter::bind_bytes(int at, Value value) {
  if (!value.array().allocated()) return insert_.bind_null(at);
  const auto stored = value.bytes();
  const auto size = static_cast<std::size_t>(value.array().size());
  if (stored.size() == size) return insert_.bind_blob(at, stored, Lifetime::kStays);
  std::vector<unsigned char> whole(stored.begin(), stored.end());
  whole.resize(size);
  insert_.bind_blob(at, whole, Lifetime::kCopied);
}

void DatabaseExport::RowInserter::bind_json(int at, std::size_t column, Value value, bool is_empty) {
  if (is_empty) {
    if (becomes_empty(column)) insert_.bind_null(at);
    return;
  }
  is_empty_[column] = false;
  made_.clear();
  write_value(json_, texts_, value);
  json_.end_line();
  json_.flush();
  made_.pop_back();
  made_ == "null" ? insert_.bind_null(at) : insert_.bind_text(at, made_, Lifetime::kCopied);
}

DocumentFile document_file(const std::string& path, std::uint64_t size, std::string sha256) {
  const std::filesystem::path whole = std::filesystem::weakly_canonical(std::filesystem::absolute(path));
  return {text::valid_utf8(whole.native()), text::valid_utf8(whole.filename().native()), size, std::move(sha256)};
}

DatabaseExport::Newcomer::Newcomer(std::string path) : path_(std::move(path)) {
  std::error_code none;
  was_there_ = std::filesystem::symlink_status(path_, none).type() != std::filesystem::file_type::not_found;
}

DatabaseExport::Newcomer::~Newcomer() {
  std::error_code none;
  if (!was_there_ && std::filesystem::file_size(path_, none) == 0 && !none) std::filesystem::remove(path_, none);
}

DatabaseExport::DatabaseExport(const std::string& path, Texts texts)
    : newcomer_(path), database_(path), texts_(std::move(texts)) {
  database_.execute("PRAGMA foreign_keys = OFF; PRAGMA cache_size = -65536; BEGIN IMMEDIATE");
  require_ours();
  database_.execute(create_tables());
}

DatabaseExport::~DatabaseExport() = default;

void DatabaseExport::require_ours() {
  if (database_.number("SELECT count(*) FROM sqlite_master") == 0) {
    return database_.execute("PRAGMA application_id = " + std::to_string(kApplication) +
                             "; PRAGMA user_version = " + std::to_string(kSchemaVersion));
  }
  if (database_.number("PRAGMA application_id") != kApplication) {
    throw DatabaseError("the database holds something else; name another one, or a new file");
  }
  if (database_.number("PRAGMA user_version") != kSchemaVersion) {
    throw DatabaseError("the database is of another version of vtrout; name another one, or a new file");
  }
}

std::string DatabaseExport::text_of(std::string_view bytes) {
  const auto utf8 = texts_.to_utf8(bytes);
  return std::string(utf8 ? *utf8 : "");
}

std::int64_t DatabaseExport::put_file(const DocumentFile& file, const vtrfile::DocumentSlots& document) {
  Statement put(database_,
                "INSERT INTO documents VALUES (NULL, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (path) DO UPDATE SET "
                "file = excluded.file, size = excluded.size, sha256 = excluded.sha256, version = excluded.version, "
                "created = excluded.created, modified = excluded.modified, product = excluded.product, "
                "product_description = excluded.product_description, product_version = excluded.product_version "
                "RETURNING document");
  const auto& header = *document.Header;
  const auto& product = document.Schema->Product;
  int at = 0;
  put.bind_text(++at, file.path, Lifetime::kCopied);
  put.bind_text(++at, file.name, Lifetime::kCopied);
  put.bind(++at, static_cast<std::int64_t>(file.size));
  put.bind_text(++at, file.sha256, Lifetime::kCopied);
  for (const vtrfile::Text text :
       {header.Version, header.Created, header.Modified, product.Code, product.Description, product.Version}) {
    put.bind_text(++at, text_of(text.bytes()), Lifetime::kCopied);
  }
  return put.run();
}

void DatabaseExport::delete_rows(std::int64_t document) {
  // Without its only document a database begins anew, which is faster than to take row by row out of each index.
  const bool is_only_one = database_.number("SELECT count(*) FROM documents") == 1;
  if (is_only_one) database_.execute(drop_indexes());
  for (const auto& table : table_types()) {
    database_.execute("DELETE FROM " + table->name +
                      (is_only_one ? "" : " WHERE document = " + std::to_string(document)));
  }
}

void DatabaseExport::put(const DocumentFile& file, const vtrfile::DocumentSlots& document,
                         const std::function<void()>& before_row) {
  const std::int64_t number = put_file(file, document);
  delete_rows(number);
  for_each_row(document, [&](const Row& row) {
    before_row();
    auto& inserter = inserters_[&row.table];
    if (!inserter) inserter = std::make_unique<RowInserter>(database_, row.table, texts_);
    return inserter->insert(number, row);
  });
  inserters_.clear();  // they point into the document
}

void DatabaseExport::commit() {
  database_.execute(create_indexes_and_views());
  database_.execute("COMMIT");
}

}  // namespace trvtrout::exchange
