#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::spreadsheet::biff8 {

// An OLE2 file: a small file system in a file, whose streams lie in sectors of one size. An allocation table (FAT) has
// for each sector the next one of its chain; the sectors of the table itself are listed in the header and, beyond 109
// of them, in a chain of further sectors (DIFAT). Streams below a cutoff lie in 64-byte sectors of one mini stream.
class CompoundFile {
 public:
  // Raises WorkbookError where any of it is inconsistent.
  explicit CompoundFile(std::string bytes);

  // Whether the root has a stream or storage of this name; case is ignored.
  bool has(std::u16string_view name) const { return find(name) != nullptr; }
  // The bytes of a stream of the root. Raises WorkbookError.
  std::string stream(std::u16string_view name) const;
  // The file with other bytes in a stream of the root; nothing changes but its sectors, the tables and its entry.
  // `content` must be kMiniCutoff bytes or more. Raises WorkbookError if the file gets too large.
  std::string with_stream(std::u16string_view name, std::string_view content) const;

  static constexpr std::uint32_t kMiniCutoff = 4096;

 private:
  friend class CompoundPatch;
  using Sector = std::uint32_t;
  enum class EntryType : std::uint8_t { kStorage = 1, kStream = 2, kRoot = 5 };
  struct Entry {
    std::u16string name;
    EntryType type;
    std::size_t at;  // in the file
    Sector start;
    std::uint64_t size;
  };

  std::size_t offset(Sector sector) const { return (std::size_t{sector} + 1) << sector_shift_; }
  std::size_t entries_per_sector() const { return (std::size_t{1} << sector_shift_) / sizeof(Sector); }
  Sector entry_of(Sector sector, std::size_t index) const;
  const Entry* find(std::u16string_view name) const;

  void read_header();
  void read_table();
  void read_directory();
  Entry read_entry(const std::vector<Sector>& directory, std::uint32_t index) const;
  void claim(Sector sector);
  // In sectors; kWhole for a chain to its end.
  static constexpr std::uint64_t kWhole = UINT64_MAX;
  void claim_chain(Sector start, std::uint64_t least, std::uint64_t most);
  std::vector<Sector> chain(Sector start, std::uint64_t most) const;
  // A stream's chain ends with its size, whatever the table says: some programs go on with another stream's sectors.
  std::uint64_t sectors_of(const Entry& stream) const {
    return (stream.size >> sector_shift_) + ((stream.size & ((std::uint64_t{1} << sector_shift_) - 1)) != 0);
  }
  void claim_stream(const Entry& stream);
  std::vector<Sector> stream_chain(const Entry& stream) const { return chain(stream.start, sectors_of(stream)); }
  std::string mini_stream_part(const Entry& entry) const;

  std::string bytes_;          // filled up to whole sectors
  std::size_t original_size_;  // without what was filled up
  unsigned sector_shift_ = 0;  // of the sector size, as a power of 2
  std::size_t sector_count_ = 0;
  std::vector<Sector> table_;
  std::vector<Sector> table_sectors_, difat_sectors_;
  std::vector<bool> claimed_;  // sectors that something was found to own
  Sector mini_table_start_ = 0;
  Entry root_{};
  std::vector<Entry> entries_;  // of the root
};

// A new OLE2 file with one stream. `content` must be CompoundFile::kMiniCutoff bytes or more.
std::string compound_file_of(std::u16string_view name, std::string_view content);

}  // namespace trvtrout::spreadsheet::biff8
