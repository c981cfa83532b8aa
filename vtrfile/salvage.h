#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/image.h"

namespace trvtrout::vtrfile {

// Bytes from the start of a file.
struct FileRange {
  std::uint64_t begin = 0, end = 0;
  std::uint64_t size() const noexcept { return end - begin; }
  bool operator==(const FileRange&) const = default;
};

// Where something of a section is missing.
struct SalvageLoss {
  std::string list;    // "Schema/Tables/Items[3]/Fields/Items"; only the section's tag outside lists
  FileRange bytes;     // from what was still whole to where reading went on
  std::string before;  // keys of the items in front of it and behind, as the file holds them; empty if there is none
  std::string behind;
};

// A list that isn't as long any more as the file says.
struct SalvagedList {
  std::string path;
  std::optional<std::uint32_t> announced;  // no value when the number is struck
  std::uint32_t kept = 0;
};

// A section that was found.
struct SalvagedSection {
  std::string tag;
  FileRange bytes;          // its tag included
  bool tag_struck = false;  // the record was found without a whole tag in front of it
  bool whole = true;
  bool behind_damage = false;  // reading had broken off before it
  bool chosen = true;          // false: another one of its name has more behind it, or stands behind it
  std::vector<SalvageLoss> losses;
  std::vector<SalvagedList> lists;  // those that lost items
};

// Bytes of a new file that were copied from the damaged one.
struct SalvagedPiece {
  std::uint64_t at = 0;  // in the new file
  FileRange from;
};

// What can be saved of a damaged file, as a file that reads to its end.
struct Salvaged {
  std::shared_ptr<const Image> image;
  std::vector<SalvagedPiece> pieces;  // of the image, in its order
  std::string version;                // of the format
  bool version_guessed = false;       // the header doesn't tell it, but the sections fit
  bool header_whole = true;
  std::uint64_t header_end = 0;  // where it ends, or what could be kept of it
  bool end_found = false;        // the tag at the end
  std::vector<SalvagedSection> sections;
  std::vector<FileRange> unexplained;  // what is neither in the image nor behind the end of the document
  std::vector<FileRange> unreadable;   // what the medium didn't give
  std::uint64_t bytes = 0;             // of the file
  std::uint64_t behind_end = 0;        // of them behind the end tag

  // How many of the file's bytes are explained.
  std::uint64_t explained() const noexcept {
    std::uint64_t left = bytes;
    for (const FileRange& range : unexplained) left -= range.size();
    return left;
  }
};

// Reads on behind what broke. `unreadable`: ranges that the medium didn't give, in their order, zeros in `image`.
// Nothing when there is no section in it that could be told.
// Takes time linear in the size of the image, and memory for one more image.
std::optional<Salvaged> salvage(const Image& image, std::span<const FileRange> unreadable = {});

}  // namespace trvtrout::vtrfile
