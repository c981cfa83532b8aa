#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace trvtrout::exchange {

// What SQLite says of a database that can't be used as it must, for people.
class DatabaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A database on disk. All calls raise DatabaseError.
class Database {
 public:
  // Opens the file (a path of the machine); one that doesn't exist is created with the first change.
  explicit Database(const std::string& path);

  void execute(const std::string& sql);
  // The number that a query gives.
  std::int64_t number(const std::string& sql);

 private:
  friend class Statement;
  [[noreturn]] void raise() const;

  struct Close {
    void operator()(sqlite3* database) const;
  };
  std::string path_;
  std::unique_ptr<sqlite3, Close> database_;
};

// A statement that is run over and over. Parameters are counted from 1 and keep their values; what texts and blobs
// point to must stay as it is until they get another one or the statement goes, but for those that are copied.
class Statement {
 public:
  enum class Lifetime { kStays, kCopied };

  // `database` must outlive it.
  Statement(Database& database, const std::string& sql);

  void bind(int at, std::int64_t number);
  void bind(int at, double number);
  void bind_null(int at);
  void bind_text(int at, std::string_view utf8, Lifetime lifetime);
  void bind_blob(int at, std::span<const unsigned char> bytes, Lifetime lifetime);
  // The number in the first column of the first row; 0 when there is none.
  std::int64_t run();

 private:
  void check(int result) const;

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  Database& database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

}  // namespace trvtrout::exchange
