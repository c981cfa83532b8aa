#include <algorithm>

#include "spreadsheet/biff8/compound_file.h"
#include "spreadsheet/biff8/compound_format.h"
#include "spreadsheet/bytes.h"

namespace trvtrout::spreadsheet::biff8 {

using namespace compound;

// A copy of the file that gets further sectors: free ones first, then some behind its end.
class CompoundPatch {
 public:
  using Sector = CompoundFile::Sector;

  explicit CompoundPatch(const CompoundFile& file) : file_(file), bytes_(file.bytes_), table_(file.table_) {}

  // Overwrites a chain, prolongs it as far as `content` needs, away from what it may have led to, and frees what it
  // doesn't need. Gives its first sector.
  Sector write(std::vector<Sector> chain, std::string_view content) {
    const std::size_t sector_size = std::size_t{1} << file_.sector_shift_;
    const std::size_t needed = (content.size() + sector_size - 1) / sector_size;
    bytes_.reserve(bytes_.size() + content.size() + content.size() / 64);
    while (chain.size() < needed) {
      const Sector sector = allocate();
      if (!chain.empty()) table_[chain.back()] = sector;
      chain.push_back(sector);
    }
    for (std::size_t index = 0; index < needed; ++index) {
      std::string_view part = content.substr(index * sector_size, sector_size);
      bytes_.replace(file_.offset(chain[index]), part.size(), part);
      std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(file_.offset(chain[index]) + part.size()),
                  sector_size - part.size(), '\0');
    }
    if (needed < chain.size()) {
      table_[chain[needed - 1]] = kEndOfChain;
      for (std::size_t index = needed; index < chain.size(); ++index) table_[chain[index]] = kFree;
    }
    return chain.front();
  }

  std::string finish(const CompoundFile::Entry& entry, Sector start, std::size_t size) {
    put<Sector>(bytes_, entry.at + kStart, start);
    put<std::uint64_t>(bytes_, entry.at + kSize, size);
    write_table();
    return std::move(bytes_);
  }

 private:
  bool is_free(std::size_t sector) const {
    return table_[sector] == kFree && (sector >= file_.claimed_.size() || !file_.claimed_[sector]);
  }

  Sector allocate() {
    while (next_ < table_.size() && !is_free(next_)) ++next_;
    if (next_ == table_.size()) {
      grow_table();
      return allocate();
    }
    const auto sector = static_cast<Sector>(next_++);
    table_[sector] = kEndOfChain;
    make_room(sector);
    return sector;
  }

  void make_room(Sector sector) { bytes_.resize(std::max(bytes_.size(), file_.offset(sector + 1))); }

  // A new sector of the table is the first one that it covers, a sector of the DIFAT the second.
  void grow_table() {
    const std::size_t per_sector = file_.entries_per_sector();
    const auto sector = static_cast<Sector>(table_.size());
    table_.resize(table_.size() + per_sector, kFree);
    table_[sector] = kTableSector;
    new_table_sectors_.push_back(sector);
    make_room(sector);
    const std::size_t listed =
        kDifatInHeader + (file_.difat_sectors_.size() + new_difat_sectors_.size()) * (per_sector - 1);
    if (file_.table_sectors_.size() + new_table_sectors_.size() > listed) {
      table_[sector + 1] = kDifatSector;
      new_difat_sectors_.push_back(sector + 1);
      make_room(sector + 1);
    }
  }

  void write_table() {
    const std::size_t per_sector = file_.entries_per_sector();
    std::vector<Sector> difat = file_.difat_sectors_;
    for (const Sector sector : new_difat_sectors_) {
      for (std::size_t entry = 0; entry + 1 < per_sector; ++entry) put_entry(sector, entry, kFree);
      put_entry(sector, per_sector - 1, kEndOfChain);
      if (difat.empty())
        put<Sector>(bytes_, kDifatStart, sector);
      else
        put_entry(difat.back(), per_sector - 1, sector);
      difat.push_back(sector);
    }
    std::vector<Sector> sectors = file_.table_sectors_;
    for (const Sector sector : new_table_sectors_) {
      if (sectors.size() < kDifatInHeader) {
        put<Sector>(bytes_, kDifat + sizeof(Sector) * sectors.size(), sector);
      } else {
        const std::size_t index = sectors.size() - kDifatInHeader;
        put_entry(difat[index / (per_sector - 1)], index % (per_sector - 1), sector);
      }
      sectors.push_back(sector);
    }
    put<std::uint32_t>(bytes_, kTableSectorCount, static_cast<std::uint32_t>(sectors.size()));
    if (!new_difat_sectors_.empty())
      put<std::uint32_t>(bytes_, kDifatSectorCount, static_cast<std::uint32_t>(difat.size()));
    for (std::size_t index = 0; index < table_.size(); ++index)
      put_entry(sectors[index / per_sector], index % per_sector, table_[index]);
  }

  void put_entry(Sector sector, std::size_t index, Sector value) {
    put<Sector>(bytes_, file_.offset(sector) + sizeof(Sector) * index, value);
  }

  const CompoundFile& file_;
  std::string bytes_;
  std::vector<Sector> table_;
  std::vector<Sector> new_table_sectors_, new_difat_sectors_;
  std::size_t next_ = 0;
};

std::string CompoundFile::with_stream(std::u16string_view name, std::string_view content) const {
  constexpr std::size_t kLargest = 0x7FFFFFFF;
  const Entry* entry = find(name);
  if (entry == nullptr || entry->type != EntryType::kStream) raise_damaged("a stream is missing in it");
  if (bytes_.size() + content.size() > kLargest) throw WorkbookError("it would become larger than 2 GB");
  // A stream that lay in the mini stream leaves its place there as it is.
  CompoundPatch patch(*this);
  const bool was_mini = entry->size < kMiniCutoff;
  const Sector start = patch.write(was_mini ? std::vector<Sector>{} : stream_chain(*entry), content);
  return patch.finish(*entry, start, content.size());
}

std::string compound_file_of(std::u16string_view name, std::string_view content) {
  ByteWriter file;
  file.raw(kSignature).zeros(16).u16(0x3E).u16(3).u16(0xFFFE).u16(9).u16(6).zeros(10);
  file.u32(1).u32(1).u32(0).u32(CompoundFile::kMiniCutoff).u32(kEndOfChain).u32(0).u32(kEndOfChain).u32(0);
  file.u32(0).raw(std::string(sizeof(std::uint32_t) * (kDifatInHeader - 1), '\xFF'));
  file.u32(kTableSector).u32(kEndOfChain).raw(std::string(kHeaderSize - 8, '\xFF'));
  const auto entry = [&file](std::u16string_view entry_name, std::uint8_t type, std::uint32_t child) {
    for (const char16_t unit : entry_name) file.u16(unit);
    file.zeros(kNameSize - 2 * entry_name.size());
    file.u16(static_cast<std::uint16_t>(2 * entry_name.size() + 2))
        .u8(type)
        .u8(1)
        .u32(kNoEntry)
        .u32(kNoEntry)
        .u32(child);
    file.zeros(kStart - kChild - 4).u32(kEndOfChain).zeros(8);
  };
  entry(u"Root Entry", 5, 1);
  entry(name, 2, kNoEntry);
  for (int unused = 0; unused < 2; ++unused)
    file.zeros(kLeft).u32(kNoEntry).u32(kNoEntry).u32(kNoEntry).zeros(kEntrySize - kChild - 4);
  return CompoundFile(file.take()).with_stream(name, content);
}

}  // namespace trvtrout::spreadsheet::biff8
