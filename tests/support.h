#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/document.h"
#include "vtrfile/reader.h"
#include "vtrfile/record_writer.h"

namespace trvtrout::tests {

// The whole of a file; the test fails when it can't be read.
std::string file_bytes(const std::filesystem::path& path);

// The sample documents by their path below samples/, all of them.
const std::vector<std::string>& sample_names();
std::string sample(const std::string& name);

// Holds `made` to the approved text at `path`, byte for byte; no text: no such file may exist. When the environment has
// VTR_APPROVE, makes it the approved one instead.
void expect_approved(const std::string& path, const std::optional<std::string>& made);

std::shared_ptr<const vtrfile::Image> image_of(std::string_view bytes);

// A text, a variant or a run of variants that lives as long as the program.
vtrfile::Text text(std::string_view bytes);
vtrfile::Var var(std::string_view tag_and_body);

// An array on elements that live as long as the program.
template <class Element>
vtrfile::Array<Element> array(std::vector<Element> elements, std::int32_t lower = 1) {
  static std::deque<std::vector<Element>> held;
  static std::deque<typename vtrfile::Array<Element>::Block> blocks;
  const auto& kept = held.emplace_back(std::move(elements));
  const auto count = static_cast<std::uint32_t>(kept.size());
  return vtrfile::Array<Element>(
      &blocks.emplace_back(typename vtrfile::Array<Element>::Block{count, lower, count, kept.data()}));
}

// The bytes of one record.
template <class Record>
std::string bytes_of(const Record& record) {
  std::string bytes;
  vtrfile::RecordWriter(bytes).write(record);
  return bytes;
}

// Builds a file section by section.
class FileBuilder {
 public:
  explicit FileBuilder(std::string_view version = "01.02.00");
  FileBuilder& tag(std::string_view name, std::int16_t count = 1);
  template <class Record>
  FileBuilder& section(std::string_view name, const Record& record) {
    tag(name).bytes_ += bytes_of(record);
    return *this;
  }
  template <class Record>
  FileBuilder& record(const Record& record) {
    bytes_ += bytes_of(record);
    return *this;
  }
  FileBuilder& raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
  }
  std::string with_end() { return tag("EOF").bytes_; }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

// One document and its reading, without a class around it.
struct Reading {
  std::shared_ptr<const vtrfile::Image> image;
  vtrfile::DocumentSlots current;
  vtrfile::GroupSlots group;
  vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> schema_old;
  std::string structure_list;
  std::unique_ptr<vtrfile::ReadError> damage;
  bool complete = false;

  void read(std::string_view bytes);
};

// The bytes of the record that was read for a section.
std::string section_bytes(const Reading& reading, std::string_view tag);

// Where the sections of a file stand, up to the first thing that is no whole section.
struct SectionPlace {
  std::string tag;
  std::size_t tag_begin;
  std::size_t begin, end;  // of the last record, the one that remains
};
std::vector<SectionPlace> section_places(std::string_view bytes);

// Holds the sections that end in front of `damage_at` to those of the whole file, but for the ones that occur twice.
void expect_sections_before(const Reading& reading, const std::string& whole, const std::vector<SectionPlace>& places,
                            std::size_t damage_at, const std::string& what);

}  // namespace trvtrout::tests
