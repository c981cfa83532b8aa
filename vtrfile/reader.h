#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vtrfile/document.h"
#include "vtrfile/part_read.h"
#include "vtrfile/read_error.h"
#include "vtrfile/record_reader.h"

namespace trvtrout::vtrfile {

// Walks the sections of one file into the slots of a document, and keeps the account of what was read.
class DocumentReader {
 public:
  // The most section tags that a file holds, the last one ("EOF") included.
  static constexpr int kMaxTags = 50;

  // All three must outlive the reader. `group` gets a copy of the records that it has a slot for; `schema_old` is the
  // scratch record for the schema of an old format.
  DocumentReader(DocumentSlots& current, GroupSlots& group, Slot<SCHEMA_STRUCT_OLD1>& schema_old);

  // Reads to the "EOF" tag; False when the version is unsupported, and nothing but the header was read. Raises
  // ReadError for damage: the sections before it are in place, and the record that it stands in holds what was read.
  // Nothing is cleared first: a section that the file doesn't have keeps what its slot held.
  bool read(std::shared_ptr<const Image> image);

  // The two status lists, at any moment: the structures that were read, a blank line, those that were not.
  std::string structure_list() const { return read_list_ + "\r\n" + not_read_list_; }

  // What was met in the file as far as reading came. May be called once.
  FileRead take_account() noexcept { return std::move(met_); }

 private:
  struct KnownSection;
  static std::span<const KnownSection> known_sections();

  template <class Read>
  void read_part(PartRead part, Read&& read);
  template <auto Member>
  void read_section(int count);
  void read_old_schema(int count);
  template <class Record>
  void read_records(Slot<Record>& slot, int count);
  template <class Record>
  void read_record(Slot<Record>& slot);
  void read_sections(bool old_format);
  std::string_view next_tag(int number);
  void account(const KnownSection& section, bool old_format);
  void enter_unknown_tag(int number, std::uint64_t offset);
  PartRead part_behind_tag(std::string_view name, std::uint64_t begin) const;
  [[noreturn]] void give_up();

  DocumentSlots& current_;
  GroupSlots& group_;
  Slot<SCHEMA_STRUCT_OLD1>& schema_old_;
  std::shared_ptr<const Image> image_;
  std::unique_ptr<RecordReader> records_;
  FileRead met_;
  std::string read_list_;
  std::string not_read_list_;
  std::string old_not_read_list_;
  bool tag_is_cut_ = false;          // the tag last read, by the end of the file
  std::optional<ReadError> astray_;  // the first tag that names no section, where the walk lost its way
};

}  // namespace trvtrout::vtrfile
