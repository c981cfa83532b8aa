#include "spreadsheet/biff8/compound_file.h"

#include <algorithm>
#include <utility>

#include "spreadsheet/biff8/compound_format.h"
#include "spreadsheet/bytes.h"

namespace trvtrout::spreadsheet::biff8 {

using namespace compound;

namespace {

constexpr unsigned kMiniShift = 6;

// The format orders names by upper case; the names that are asked for are ASCII.
char16_t upper(char16_t unit) { return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit; }

}  // namespace

CompoundFile::CompoundFile(std::string bytes) : bytes_(std::move(bytes)), original_size_(bytes_.size()) {
  read_header();
  read_table();
  read_directory();
}

void CompoundFile::read_header() {
  if (bytes_.size() < kHeaderSize || !bytes_.starts_with(kSignature)) raise_damaged("its header is cut off");
  sector_shift_ = get<std::uint16_t>(bytes_, kSectorShift);
  if ((sector_shift_ != 9 && sector_shift_ != 12) || get<std::uint16_t>(bytes_, kMiniSectorShift) != kMiniShift ||
      get<std::uint32_t>(bytes_, kCutoff) != kMiniCutoff)
    raise_damaged("its header has sizes that no program writes");
  const std::size_t sector_size = std::size_t{1} << sector_shift_;
  const std::size_t sectors = (bytes_.size() + sector_size - 1) / sector_size;
  bytes_.resize(sectors * sector_size);
  sector_count_ = sectors - 1;
}

CompoundFile::Sector CompoundFile::entry_of(Sector sector, std::size_t index) const {
  return get<Sector>(bytes_, offset(sector) + sizeof(Sector) * index);
}

void CompoundFile::claim(Sector sector) {
  if (sector >= sector_count_)
    raise_damaged("sector " + std::to_string(sector) + " lies behind its end, perhaps it was cut off");
  if (claimed_[sector]) raise_damaged("sector " + std::to_string(sector) + " is used twice");
  claimed_[sector] = true;
}

void CompoundFile::read_table() {
  claimed_.resize(sector_count_);
  const auto count = get<std::uint32_t>(bytes_, kTableSectorCount);
  if (count > sector_count_) raise_damaged("its allocation table is longer than the file");
  const std::size_t per_sector = entries_per_sector();
  for (std::size_t index = 0; index < count; ++index) {
    if (index < kDifatInHeader) {
      table_sectors_.push_back(get<Sector>(bytes_, kDifat + sizeof(Sector) * index));
    } else {
      const std::size_t slot = (index - kDifatInHeader) % (per_sector - 1);
      if (slot == 0) {
        difat_sectors_.push_back(difat_sectors_.empty() ? get<Sector>(bytes_, kDifatStart)
                                                        : entry_of(difat_sectors_.back(), per_sector - 1));
        claim(difat_sectors_.back());
      }
      table_sectors_.push_back(entry_of(difat_sectors_.back(), slot));
    }
    claim(table_sectors_.back());
    for (std::size_t entry = 0; entry < per_sector; ++entry) table_.push_back(entry_of(table_sectors_.back(), entry));
  }
  const auto is_outside = [this](Sector sector) { return sector >= table_.size(); };
  if (std::ranges::any_of(table_sectors_, is_outside) || std::ranges::any_of(difat_sectors_, is_outside))
    raise_damaged("its allocation table doesn't cover itself");
}

void CompoundFile::claim_chain(Sector start, std::uint64_t least, std::uint64_t most) {
  std::uint64_t count = 0;
  for (Sector sector = start; sector != kEndOfChain && count < most; sector = table_[sector], ++count) {
    if (sector >= table_.size()) raise_damaged("a chain of sectors leads out of it");
    claim(sector);
  }
  if (count < least) raise_damaged("a stream in it is cut off");
}

// Of what was claimed, so it ends.
std::vector<CompoundFile::Sector> CompoundFile::chain(Sector start, std::uint64_t most) const {
  std::vector<Sector> sectors;
  for (Sector sector = start; sector != kEndOfChain && sectors.size() < most; sector = table_[sector])
    sectors.push_back(sector);
  return sectors;
}

CompoundFile::Entry CompoundFile::read_entry(const std::vector<Sector>& directory, std::uint32_t index) const {
  const std::size_t per_sector = (std::size_t{1} << sector_shift_) / kEntrySize;
  Entry entry{};
  entry.at = offset(directory[index / per_sector]) + kEntrySize * (index % per_sector);
  const std::string_view bytes = std::string_view(bytes_).substr(entry.at, kEntrySize);
  const std::size_t length = get<std::uint16_t>(bytes, kNameLength);
  if (length > kNameSize) raise_damaged("its directory has a name that is too long");
  for (std::size_t at = 0; at + 2 < length; at += 2) entry.name += get<char16_t>(bytes, at);
  entry.type = static_cast<EntryType>(get<std::uint8_t>(bytes, kType));
  entry.start = get<Sector>(bytes, kStart);
  // With small sectors the upper half of the size may be left over from something else.
  entry.size = sector_shift_ == 9 ? get<std::uint32_t>(bytes, kSize) : get<std::uint64_t>(bytes, kSize);
  return entry;
}

void CompoundFile::claim_stream(const Entry& stream) {
  claim_chain(stream.start, sectors_of(stream), sectors_of(stream));
}

void CompoundFile::read_directory() {
  const auto start = get<Sector>(bytes_, kDirectoryStart);
  claim_chain(start, 1, kWhole);
  const std::vector<Sector> directory = chain(start, kWhole);
  const std::size_t count = directory.size() * ((std::size_t{1} << sector_shift_) / kEntrySize);
  root_ = read_entry(directory, 0);
  if (root_.type != EntryType::kRoot) raise_damaged("its directory has no root");
  claim_stream(root_);
  mini_table_start_ = get<Sector>(bytes_, kMiniTableStart);
  if (mini_table_start_ == kFree) mini_table_start_ = kEndOfChain;
  claim_chain(mini_table_start_, 0, kWhole);

  struct Visit {
    std::uint32_t index;
    bool in_root;
  };
  std::vector<bool> visited(count);
  std::vector<Visit> open{{get<std::uint32_t>(bytes_, root_.at + kChild), true}};
  visited[0] = true;
  while (!open.empty()) {
    const Visit visit = open.back();
    open.pop_back();
    if (visit.index == kNoEntry) continue;
    if (visit.index >= count || visited[visit.index]) raise_damaged("its directory is tangled");
    visited[visit.index] = true;
    Entry entry = read_entry(directory, visit.index);
    if (entry.type != EntryType::kStorage && entry.type != EntryType::kStream)
      raise_damaged("its directory has an entry of no known kind");
    if (entry.type == EntryType::kStream && entry.size >= kMiniCutoff) claim_stream(entry);
    open.push_back({get<std::uint32_t>(bytes_, entry.at + kLeft), visit.in_root});
    open.push_back({get<std::uint32_t>(bytes_, entry.at + kRight), visit.in_root});
    if (entry.type == EntryType::kStorage) open.push_back({get<std::uint32_t>(bytes_, entry.at + kChild), false});
    if (visit.in_root) entries_.push_back(std::move(entry));
  }
}

const CompoundFile::Entry* CompoundFile::find(std::u16string_view name) const {
  const auto is_named = [name](const Entry& entry) { return std::ranges::equal(entry.name, name, {}, upper, upper); };
  const auto found = std::ranges::find_if(entries_, is_named);
  return found == entries_.end() ? nullptr : &*found;
}

std::string CompoundFile::stream(std::u16string_view name) const {
  const Entry* entry = find(name);
  if (entry == nullptr || entry->type != EntryType::kStream) raise_damaged("a stream is missing in it");
  if (entry->size < kMiniCutoff) return mini_stream_part(*entry);
  std::string content;
  content.reserve(entry->size);
  for (const Sector sector : stream_chain(*entry)) {
    const std::size_t wanted = std::min<std::size_t>(std::size_t{1} << sector_shift_, entry->size - content.size());
    if (offset(sector) + wanted > original_size_) raise_damaged("its end is cut off");
    content.append(bytes_, offset(sector), wanted);
  }
  return content;
}

std::string CompoundFile::mini_stream_part(const Entry& entry) const {
  std::string content;
  if (entry.size == 0) return content;
  if (root_.size == 0) raise_damaged("its mini stream is missing");
  const std::vector<Sector> container = stream_chain(root_);
  const std::vector<Sector> mini_table = chain(mini_table_start_, kWhole);
  const std::size_t per_sector = entries_per_sector();
  constexpr std::size_t kMiniSize = std::size_t{1} << kMiniShift;
  // A chain in a circle ends when the stream is whole.
  for (Sector mini = entry.start; content.size() < entry.size;) {
    const std::uint64_t at = std::uint64_t{mini} << kMiniShift;
    if (at >= root_.size || mini / per_sector >= mini_table.size())
      raise_damaged("a chain of sectors leads out of its mini stream");
    const std::size_t place = offset(container[at >> sector_shift_]) + (at & ((std::size_t{1} << sector_shift_) - 1));
    content.append(bytes_, place, std::min<std::size_t>(kMiniSize, entry.size - content.size()));
    mini = entry_of(mini_table[mini / per_sector], mini % per_sector);
  }
  return content;
}

}  // namespace trvtrout::spreadsheet::biff8
