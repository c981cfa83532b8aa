#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "exchange/database.h"
#include "exchange/json_writer.h"
#include "exchange/tables.h"
#include "exchange/texts.h"

namespace trvtrout::exchange {

// The file that a document was read from.
struct DocumentFile {
  std::string path;  // by which the document is known in the database
  std::string name;
  std::uint64_t size;
  std::string sha256;
};

// The file at `path`, a path of the machine, by whatever name it was given.
DocumentFile document_file(const std::string& path, std::uint64_t size, std::string sha256);

// Puts documents into a database, all in one transaction: until commit() it's as it was, and stays so without one.
class DatabaseExport {
 public:
  // A database that doesn't exist is created, and goes again when nothing comes to stand in it. Raises DatabaseError,
  // for one that holds something else too.
  explicit DatabaseExport(const std::string& path, Texts texts);
  ~DatabaseExport();
  DatabaseExport(const DatabaseExport&) = delete;
  DatabaseExport& operator=(const DatabaseExport&) = delete;

  // The document's rows take the place of those that are there for its path. Raises DatabaseError, and what
  // `before_row` raises, which is called in front of each row.
  void put(
      const DocumentFile& file, const vtrfile::DocumentSlots& document,
      const std::function<void()>& before_row = [] {});
  // Raises DatabaseError.
  void commit();

 private:
  class RowInserter;

  // Takes an empty database away that wasn't there.
  class Newcomer {
   public:
    explicit Newcomer(std::string path);
    ~Newcomer();
    Newcomer(const Newcomer&) = delete;
    Newcomer& operator=(const Newcomer&) = delete;

   private:
    std::string path_;
    bool was_there_;
  };

  void require_ours();
  std::int64_t put_file(const DocumentFile& file, const vtrfile::DocumentSlots& document);
  void delete_rows(std::int64_t document);
  std::string text_of(std::string_view bytes);

  Newcomer newcomer_;
  Database database_;
  Texts texts_;
  std::map<const TableType*, std::unique_ptr<RowInserter>> inserters_;
};

}  // namespace trvtrout::exchange
