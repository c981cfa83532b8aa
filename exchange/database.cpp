#include "exchange/database.h"

#include <sqlite3.h>

namespace trvtrout::exchange {
namespace {

constexpr int kWaitMilliseconds = 10000;

auto destructor_for(Statement::Lifetime lifetime) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): that's how the library spells them
  return lifetime == Statement::Lifetime::kStays ? SQLITE_STATIC : SQLITE_TRANSIENT;
}

}  // namespace

void Database::Close::operator()(sqlite3* database) const { sqlite3_close(database); }

Database::Database(const std::string& path) : path_(path) {
  sqlite3* opened = nullptr;
  // Behind a folder no name is one that the library takes for something else than a file.
  const std::string file = path.starts_with('/') ? path : "./" + path;
  const int result = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) raise();
  sqlite3_busy_timeout(opened, kWaitMilliseconds);
}

void Database::raise() const {
  const int code = sqlite3_errcode(database_.get());
  const char* const advice = code == SQLITE_BUSY     ? "; another program uses it, try again when that's done"
                             : code == SQLITE_NOTADB ? "; name a database or a new file"
                             : code == SQLITE_FULL   ? "; make room on the disk"
                                                     : "";
  throw DatabaseError(path_ + ": " + sqlite3_errmsg(database_.get()) + advice);
}

void Database::execute(const std::string& sql) {
  if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) raise();
}

std::int64_t Database::number(const std::string& sql) { return Statement(*this, sql).run(); }

void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Statement::Statement(Database& database, const std::string& sql) : database_(database) {
  sqlite3_stmt* prepared = nullptr;
  check(sqlite3_prepare_v3(database.database_.get(), sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &prepared, nullptr));
  statement_.reset(prepared);
}

void Statement::check(int result) const {
  if (result != SQLITE_OK) database_.raise();
}

void Statement::bind(int at, std::int64_t number) { check(sqlite3_bind_int64(statement_.get(), at, number)); }

void Statement::bind(int at, double number) { check(sqlite3_bind_double(statement_.get(), at, number)); }

void Statement::bind_null(int at) { check(sqlite3_bind_null(statement_.get(), at)); }

void Statement::bind_text(int at, std::string_view utf8, Lifetime lifetime) {
  check(sqlite3_bind_text64(statement_.get(), at, utf8.empty() ? "" : utf8.data(), utf8.size(),
                            destructor_for(lifetime), SQLITE_UTF8));
}

void Statement::bind_blob(int at, std::span<const unsigned char> bytes, Lifetime lifetime) {
  // Of no bytes at all a null pointer would be a NULL.
  static constexpr unsigned char kNone = 0;
  check(sqlite3_bind_blob64(statement_.get(), at, bytes.empty() ? &kNone : bytes.data(), bytes.size(),
                            destructor_for(lifetime)));
}

std::int64_t Statement::run() {
  const int result = sqlite3_step(statement_.get());
  const std::int64_t number = result == SQLITE_ROW ? sqlite3_column_int64(statement_.get(), 0) : 0;
  // What the step raised, the reset tells again.
  check(sqlite3_reset(statement_.get()));
  return number;
}

}  // namespace trvtrout::exchange
