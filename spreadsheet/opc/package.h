#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct zip;

namespace trvtrout::spreadsheet::ooxml {

// The content of a part, piece by piece, so that a large one never stands in memory.
class PartStream {
 public:
  virtual ~PartStream() = default;
  // In bytes, of all pieces together.
  virtual std::uint64_t size() const = 0;
  // The next piece, valid until the next call; empty at the end. Raises WorkbookError.
  virtual std::string_view next() = 0;
};

// With the ASCII letters in lower case: two part names that are then the same name one part.
std::string lower(std::string_view name);

std::unique_ptr<PartStream> text_stream(std::string text);

// A part that is to be added to a package or to take the place of one.
struct PartChange {
  std::string name;
  std::unique_ptr<PartStream> content;
};

// A zip file of parts. Part names are looked up with the case of ASCII letters ignored.
class Package {
 public:
  // `bytes` must outlive the package. Raises WorkbookError for what is no zip file, for a damaged one, and for one
  // whose entries are encrypted or not told apart by their names.
  explicit Package(std::string_view bytes);
  ~Package();
  Package(const Package&) = delete;
  Package& operator=(const Package&) = delete;

  bool has(std::string_view name) const;
  // Whether a part stands below `folder`, whose name ends in a slash.
  bool has_folder(std::string_view folder) const;
  bool has_backslashes() const;
  // The whole part. Raises WorkbookError if there's none, if it's damaged or if it's larger than kLargestXml.
  std::string read(const std::string& name) const;
  std::unique_ptr<PartStream> stream(const std::string& name) const;
  // The bytes of the package with `changes`; other entries stay byte for byte, in their order. Each written entry has
  // the same date, so that the same changes give the same bytes.
  std::string with(std::vector<PartChange> changes) const;

 private:
  std::string_view bytes_;
  zip* zip_;
  std::unordered_map<std::string, std::uint64_t> indices_;  // by the name in lower case
};

}  // namespace trvtrout::spreadsheet::ooxml
