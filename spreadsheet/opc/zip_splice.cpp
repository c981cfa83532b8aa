#include "spreadsheet/opc/zip_splice.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

#include "spreadsheet/bytes.h"

// A zip file: entries, each a header and its content; a directory with a record for each entry; the end, which tells
// where the directory stands. Numbers that don't fit are all ones, and stand with 64 bits in an extra field of the
// record and in a second end in front of the end. Libraries read entries and write them anew; that loses what they
// don't know of and what they hold for wrong, so entries that stay are copied here as bytes.
namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::string_view kHeaderSignature = "PK\3\4", kRecordSignature = "PK\1\2", kEndSignature = "PK\5\6",
                           kWideEndSignature = "PK\6\6", kLocatorSignature = "PK\6\7";
constexpr std::uint32_t kWide = 0xFFFFFFFF;
constexpr std::uint16_t kWideCount = 0xFFFF;
// In an entry's header.
constexpr std::size_t kHeaderName = 26, kHeaderExtra = 28, kHeaderSize = 30;
// In a record. The extra field of 64 bits has the first three of these that are all ones.
constexpr std::size_t kContentSize = 24, kStoredSize = 20, kPlace = 42;
constexpr std::size_t kName = 28, kExtra = 30, kComment = 32, kRecordSize = 46;
constexpr std::uint16_t kWideExtra = 1;
// In the end, in the second one, and in what leads to that, which stands between the two.
constexpr std::size_t kEndCount = 8, kEndAllCount = 10, kEndLength = 12, kEndPlace = 16, kEndComment = 20,
                      kEndSize = 22;
constexpr std::size_t kWideEndCount = 24, kWideEndAllCount = 32, kWideEndLength = 40, kWideEndPlace = 48;
constexpr std::size_t kLocatorPlace = 8, kLocatorSize = 20;

// A number of a record, of 4 or 8 bytes.
struct Field {
  std::size_t at, size;
};

Field field_of(std::string_view record, std::size_t at) {
  if (get<std::uint32_t>(record, at) != kWide) return {at, 4};
  std::size_t extra = kRecordSize + get<std::uint16_t>(record, kName);
  const std::size_t end = extra + get<std::uint16_t>(record, kExtra);
  while (extra + 4 <= end && get<std::uint16_t>(record, extra) != kWideExtra)
    extra += 4 + get<std::uint16_t>(record, extra + 2);
  if (extra + 4 > end) return {at, 4};
  std::size_t wide = extra + 4;
  for (const std::size_t other : {kContentSize, kStoredSize}) {
    if (other == at) break;
    if (get<std::uint32_t>(record, other) == kWide) wide += 8;
  }
  if (wide + 8 > std::min(end, extra + 4 + get<std::uint16_t>(record, extra + 2)))
    raise_damaged("its zip file has a number that is cut off");
  return {wide, 8};
}

std::uint64_t number_in(std::string_view record, std::size_t at) {
  const Field field = field_of(record, at);
  return field.size == 8 ? get<std::uint64_t>(record, field.at) : get<std::uint32_t>(record, field.at);
}

struct ZipEntry {
  std::string_view record;
  std::uint64_t place;
  std::string_view bytes;  // from its header to what comes next in the file
};

class ZipView {
 public:
  explicit ZipView(std::string_view bytes) : bytes_(bytes) {
    find_end();
    read_directory();
    read_entries();
  }

  const std::vector<ZipEntry>& entries() const { return entries_; }
  // The numbers of the entries as they stand in the file.
  const std::vector<std::size_t>& order() const { return order_; }
  std::string_view front() const {
    return bytes_.substr(0, order_.empty() ? directory_ : entries_[order_.front()].place);
  }
  // The ends for another directory.
  std::string ends(std::uint64_t directory, std::uint64_t length, std::uint64_t count) const;

 private:
  [[noreturn]] static void raise_inconsistent() { raise_damaged("its zip file is inconsistent"); }

  bool starts_at(std::uint64_t at, std::string_view signature) const {
    return at <= bytes_.size() && bytes_.substr(at).starts_with(signature);
  }
  bool is_end(std::size_t at);
  void find_end();
  void read_directory();
  void read_entries();

  std::string_view bytes_;
  std::size_t end_ = 0;
  std::optional<std::size_t> wide_end_;
  std::uint64_t directory_ = 0, directory_end_ = 0, count_ = 0;
  std::vector<ZipEntry> entries_;
  std::vector<std::size_t> order_;
};

// Takes over what the end tells, if it's one.
bool ZipView::is_end(std::size_t at) {
  if (bytes_.size() - at - kEndSize < get<std::uint16_t>(bytes_, at + kEndComment)) return false;
  end_ = at;
  wide_end_.reset();
  count_ = get<std::uint16_t>(bytes_, at + kEndAllCount);
  directory_ = get<std::uint32_t>(bytes_, at + kEndPlace);
  if (at >= kLocatorSize && starts_at(at - kLocatorSize, kLocatorSignature)) {
    const auto place = get<std::uint64_t>(bytes_, at - kLocatorSize + kLocatorPlace);
    if (place >= at || !starts_at(place, kWideEndSignature)) return false;
    wide_end_ = place;
    count_ = get<std::uint64_t>(bytes_, place + kWideEndAllCount);
    directory_ = get<std::uint64_t>(bytes_, place + kWideEndPlace);
  }
  return directory_ <= wide_end_.value_or(at) && (count_ == 0 || starts_at(directory_, kRecordSignature));
}

void ZipView::find_end() {
  constexpr std::size_t kLongestComment = 0xFFFF;
  if (bytes_.size() < kEndSize) raise_inconsistent();
  std::size_t at = bytes_.size() - kEndSize;
  const std::size_t first = at - std::min(at, kLongestComment);
  while (!starts_at(at, kEndSignature) || !is_end(at))
    if (at-- == first) raise_inconsistent();
}

void ZipView::read_directory() {
  std::uint64_t at = directory_;
  const std::size_t limit = wide_end_.value_or(end_);
  for (std::uint64_t left = count_; left > 0; --left) {
    if (limit - at < kRecordSize || !starts_at(at, kRecordSignature)) raise_inconsistent();
    const std::string_view rest = bytes_.substr(at, limit - at);
    std::size_t size = kRecordSize;
    for (const std::size_t part : {kName, kExtra, kComment}) size += get<std::uint16_t>(rest, part);
    if (size > rest.size()) raise_inconsistent();
    entries_.push_back({rest.substr(0, size), number_in(rest.substr(0, size), kPlace), {}});
    at += size;
  }
  directory_end_ = at;
}

// Entries don't reach into each other.
void ZipView::read_entries() {
  order_.resize(entries_.size());
  std::iota(order_.begin(), order_.end(), std::size_t{0});
  std::ranges::sort(order_, {}, [this](std::size_t number) { return entries_[number].place; });
  std::uint64_t end = directory_;
  for (auto number = order_.rbegin(); number != order_.rend(); ++number) {
    ZipEntry& entry = entries_[*number];
    if (entry.place > end || end - entry.place < kHeaderSize || !starts_at(entry.place, kHeaderSignature))
      raise_inconsistent();
    entry.bytes = bytes_.substr(entry.place, end - entry.place);
    const std::size_t head = kHeaderSize + std::size_t{get<std::uint16_t>(entry.bytes, kHeaderName)} +
                             get<std::uint16_t>(entry.bytes, kHeaderExtra);
    if (head > entry.bytes.size() || entry.bytes.size() - head < number_in(entry.record, kStoredSize))
      raise_inconsistent();
    end = entry.place;
  }
}

std::string ZipView::ends(std::uint64_t directory, std::uint64_t length, std::uint64_t count) const {
  std::string ends(bytes_.substr(directory_end_));
  if (wide_end_) {
    const std::size_t wide = *wide_end_ - directory_end_;
    for (const std::size_t at : {kWideEndCount, kWideEndAllCount}) put(ends, wide + at, count);
    put(ends, wide + kWideEndLength, length);
    put(ends, wide + kWideEndPlace, directory);
    put(ends, end_ - directory_end_ - kLocatorSize + kLocatorPlace, std::uint64_t{directory + length + wide});
  }
  const std::size_t end = end_ - directory_end_;
  if (!wide_end_ && count >= kWideCount) throw WorkbookError("it has no room for another part");
  for (const std::size_t at : {kEndCount, kEndAllCount})
    if (!wide_end_ || get<std::uint16_t>(ends, end + at) != kWideCount)
      put(ends, end + at, static_cast<std::uint16_t>(std::min<std::uint64_t>(count, kWideCount)));
  for (const auto& [at, value] : {std::pair(kEndLength, length), std::pair(kEndPlace, directory)})
    if (!wide_end_ || get<std::uint32_t>(ends, end + at) != kWide)
      put(ends, end + at, static_cast<std::uint32_t>(value));
  return ends;
}

}  // namespace

std::string spliced(std::string_view old, std::string_view added,
                    const std::vector<std::optional<std::size_t>>& replaced) {
  const ZipView before(old), additions(added);
  const auto is_missing = [&before](std::optional<std::size_t> number) {
    return number && *number >= before.entries().size();
  };
  // The library may have found another directory.
  if (additions.entries().size() != replaced.size() || std::ranges::any_of(replaced, is_missing))
    raise_damaged("its zip file lists its parts in two ways");
  if (old.size() + added.size() >= kWide) throw WorkbookError("it would get larger than 4 GB");
  std::vector<ZipEntry> entries = before.entries();
  std::vector<std::size_t> order = before.order();
  for (std::size_t number = 0; number < replaced.size(); ++number) {
    const ZipEntry& entry = additions.entries()[number];
    if (replaced[number]) {
      entries[*replaced[number]] = entry;
    } else {
      order.push_back(entries.size());
      entries.push_back(entry);
    }
  }
  std::string out(before.front());
  out.reserve(old.size() + added.size());
  for (const std::size_t number : order) {
    entries[number].place = out.size();
    out += entries[number].bytes;
  }
  const std::uint64_t directory = out.size();
  for (const ZipEntry& entry : entries) {
    std::string record(entry.record);
    const Field place = field_of(record, kPlace);
    place.size == 8 ? put(record, place.at, entry.place)
                    : put(record, place.at, static_cast<std::uint32_t>(entry.place));
    out += record;
  }
  return out + before.ends(directory, out.size() - directory, entries.size());
}

}  // namespace trvtrout::spreadsheet::ooxml
