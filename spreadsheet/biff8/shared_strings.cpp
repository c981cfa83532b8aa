#include "spreadsheet/biff8/shared_strings.h"

#include <algorithm>
#include <iterator>

#include "text/surrogates.h"
#include "text/utf8.h"

namespace trvtrout::spreadsheet::biff8 {
namespace {

constexpr std::size_t kCounts = 8;
constexpr std::size_t kTextHead = 3;
constexpr std::uint8_t kWide = 0x01, kPhonetic = 0x04, kRich = 0x08;
constexpr std::size_t kFormatRunSize = 4;
constexpr std::size_t kLongestText = 32767;

// Goes through the texts of the table. Only a text's units take a flags byte at the start of another record.
class TextWalk {
 public:
  explicit TextWalk(const std::vector<std::string>& parts) : parts_(parts) {}

  std::uint32_t part() const { return static_cast<std::uint32_t>(part_); }
  std::uint32_t at() const { return static_cast<std::uint32_t>(at_); }
  bool at_end() const { return part_ + 1 == parts_.size() && at_ == parts_[part_].size(); }

  // To the start of the next text.
  void find_text() {
    if (at_ == parts_[part_].size()) next_part();
  }

  void go_to(std::uint32_t part, std::uint32_t at) {
    part_ = part;
    at_ = at;
  }

  struct Text {
    std::u16string units;
    bool is_plain;
  };
  Text take_text() {
    const std::size_t length = take<std::uint16_t>();
    const std::uint8_t flags = take<std::uint8_t>();
    if (flags & kRich) take<std::uint16_t>();
    if (flags & kPhonetic) take<std::uint32_t>();
    Text text{{}, (flags & (kRich | kPhonetic)) == 0};
    pass_units(length, flags & kWide, &text.units);
    return text;
  }

  void pass_text() {
    const std::size_t length = take<std::uint16_t>();
    const std::uint8_t flags = take<std::uint8_t>();
    const std::size_t runs = flags & kRich ? take<std::uint16_t>() : 0;
    const std::size_t phonetic = flags & kPhonetic ? take<std::uint32_t>() : 0;
    pass_units(length, flags & kWide, nullptr);
    pass_bytes(kFormatRunSize * runs + phonetic);
  }

 private:
  template <class Number>
  Number take() {
    const Number number = get<Number>(parts_[part_], at_);
    at_ += sizeof number;
    return number;
  }

  void next_part() {
    if (++part_ == parts_.size()) raise_damaged("its table of texts ends early");
    at_ = 0;
  }

  // `units` gets them if it isn't null.
  void pass_units(std::size_t left, bool wide, std::u16string* units) {
    while (true) {
      const std::size_t width = wide ? 2 : 1;
      const std::size_t room = parts_[part_].size() - at_;
      const std::size_t passed = std::min(left, room / width);
      for (std::size_t each = 0; units != nullptr && each < passed; ++each) {
        const std::size_t at = at_ + each * width;
        *units += wide ? get<char16_t>(parts_[part_], at) : char16_t{get<std::uint8_t>(parts_[part_], at)};
      }
      at_ += passed * width;
      left -= passed;
      if (left == 0) return;
      if (at_ != parts_[part_].size()) raise_damaged("its table of texts has half a character");
      next_part();
      wide = take<std::uint8_t>() & kWide;
    }
  }

  void pass_bytes(std::size_t left) {
    while (true) {
      const std::size_t passed = std::min(left, parts_[part_].size() - at_);
      at_ += passed;
      left -= passed;
      if (left == 0) return;
      next_part();
    }
  }

  const std::vector<std::string>& parts_;
  std::size_t part_ = 0, at_ = kCounts;
};

// A byte of the source that is no UTF-8 has become half a pair, which readers of the format refuse.
std::u16string whole_pairs(std::u16string text) {
  constexpr char16_t kReplacement = 0xFFFD;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text::is_pair_at(text, at))
      ++at;
    else if (text::is_high_half(text[at]) || text::is_low_half(text[at]))
      text[at] = kReplacement;
  }
  return text;
}

}  // namespace

SharedStrings::SharedStrings(const Globals& globals) {
  const std::vector<std::size_t> tables = globals.all(kSst);
  if (tables.size() > 1) raise_damaged("it has two tables of texts");
  if (tables.empty()) {
    parts_.emplace_back(kCounts, '\0');
    return;
  }
  // An empty record among them says nothing, not even the width of letters.
  for (std::size_t index = tables[0]; index < globals.behind(tables[0]); ++index)
    if (const std::string& body = globals.records[index].body; !body.empty()) parts_.push_back(body);
  if (parts_.empty()) raise_damaged("its table of texts is empty");
  uses_ = get<std::uint32_t>(parts_[0], 0);
  read_places(get<std::uint32_t>(parts_[0], 4));
}

void SharedStrings::read_places(std::uint32_t count) {
  TextWalk walk(parts_);
  // Some programs claim more than they write; what no record has is no text.
  for (; count > 0 && !walk.at_end(); --count) {
    walk.find_text();
    places_.push_back({walk.part(), walk.at()});
    walk.pass_text();
  }
  if (!walk.at_end()) raise_damaged("its table of texts is longer than it says");
}

std::optional<std::string> SharedStrings::text(std::uint32_t number) const {
  if (number >= places_.size()) return std::nullopt;
  TextWalk walk(parts_);
  walk.go_to(places_[number].part, places_[number].at);
  return text::to_utf8(walk.take_text().units);
}

void SharedStrings::release(std::uint32_t number, std::uint32_t cells) {
  uses_ -= std::min(uses_, cells);
  if (number >= places_.size()) return;
  TextWalk walk(parts_);
  walk.go_to(places_[number].part, places_[number].at);
  const auto [units, is_plain] = walk.take_text();
  if (is_plain) numbers_.try_emplace(released_.emplace_back(text::to_utf8(units)), number);
}

std::uint32_t SharedStrings::number(std::string_view text) {
  ++uses_;
  const auto [found, is_new] = numbers_.try_emplace(text, static_cast<std::uint32_t>(places_.size()));
  if (is_new) append(whole_pairs(text::from_utf8(text)));
  return found->second;
}

void SharedStrings::append(std::u16string_view text) {
  if (text.size() > kLongestText) throw WorkbookError("a text is longer than the 32,767 characters of a cell");
  const bool wide = std::ranges::any_of(text, [](char16_t unit) { return unit > 0xFF; });
  const std::size_t width = wide ? 2 : 1;
  // The head isn't parted from the first letter.
  if (parts_.back().size() + kTextHead + width > kLargestBody) parts_.emplace_back();
  places_.push_back({static_cast<std::uint32_t>(parts_.size() - 1), static_cast<std::uint32_t>(parts_.back().size())});
  ByteWriter part(std::move(parts_.back()));
  part.u16(static_cast<std::uint16_t>(text.size())).u8(wide);
  while (true) {
    const std::size_t fits = std::min(text.size(), (kLargestBody - part.bytes().size()) / width);
    for (const char16_t unit : text.substr(0, fits)) wide ? part.u16(unit) : part.u8(static_cast<std::uint8_t>(unit));
    text.remove_prefix(fits);
    parts_.back() = part.take();
    if (text.empty()) return;
    parts_.emplace_back();
    part = ByteWriter();
    part.u8(wide);
  }
}

void SharedStrings::store(Globals& globals) const {
  std::erase_if(globals.records, [](const Record& record) { return record.type == kExtSst; });
  if (places_.empty() && globals.all(kSst).empty()) return;
  if (globals.all(kSst).empty()) globals.append({kSst, {}});
  const std::size_t first = globals.all(kSst)[0];
  const auto begin = globals.records.begin() + static_cast<std::ptrdiff_t>(first);
  const auto place =
      globals.records.erase(begin, globals.records.begin() + static_cast<std::ptrdiff_t>(globals.behind(first)));
  std::vector<Record> records;
  for (const std::string& part : parts_) records.push_back({records.empty() ? kSst : kContinue, part});
  records[0].set32(0, uses_);
  records[0].set32(4, places_.size());
  const std::size_t buckets = (places_.size() + bucket_size() - 1) / bucket_size();
  records.push_back({kExtSst, ByteWriter().u16(static_cast<std::uint16_t>(bucket_size())).zeros(8 * buckets).take()});
  globals.records.insert(place, std::move_iterator(records.begin()), std::move_iterator(records.end()));
}

void SharedStrings::mend_index(const Globals& globals, std::string& stream) const {
  if (places_.empty()) return;
  const std::size_t first = globals.all(kSst)[0];
  std::size_t at = 0;
  std::vector<std::size_t> starts;
  for (std::size_t index = 0; index <= first + parts_.size(); ++index) {
    if (index >= first) starts.push_back(at);
    at += kRecordHead + globals.records[index].body.size();
  }
  std::size_t bucket = starts.back() + kRecordHead + 2;
  for (std::size_t text = 0; text < places_.size(); text += bucket_size(), bucket += 8) {
    const std::size_t in_record = kRecordHead + places_[text].at;
    put(stream, bucket, static_cast<std::uint32_t>(starts[places_[text].part] + in_record));
    put(stream, bucket + 4, static_cast<std::uint16_t>(in_record));
  }
}

}  // namespace trvtrout::spreadsheet::biff8
