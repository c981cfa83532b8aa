#include "spreadsheet/biff8/styles.h"

#include <algorithm>
#include <map>
#include <set>

#include "spreadsheet/number_formats.h"
#include "text/utf8.h"

namespace trvtrout::spreadsheet::biff8 {
namespace {

constexpr std::size_t kMostXfs = 4050;
constexpr std::size_t kMostFonts = 510;
constexpr std::uint16_t kFirstOwnFormat = 164, kNoFormat = 0xFFFF;

// In an XF.
constexpr std::size_t kXfFont = 0, kXfFormat = 2, kXfFlags = 4, kXfAlignment = 6, kXfUsed = 9, kXfSize = 20;
constexpr std::uint16_t kStyleBit = 0x0004;
constexpr std::uint8_t kLeftAligned = 0x01, kAlignmentBits = 0x07;
constexpr std::uint8_t kUsesFormat = 0x04, kUsesFont = 0x08, kUsesAlignment = 0x10;
// In a FONT.
constexpr std::size_t kFontColor = 4, kFontWeight = 6;
constexpr std::uint16_t kBold = 700;
constexpr std::uint16_t kColorsBeforePalette = 7;
// In an XFCRC and an XFEXT.
constexpr std::size_t kXfCount = 14, kXfChecksum = 16, kExtendedXf = 14;

// Over the bodies of all XFs; with it a program sees whether another one that knows nothing of the extensions of cell
// formats has changed them.
std::uint32_t checksum(const Globals& globals) {
  std::uint32_t crc = 0;
  for (const std::size_t index : globals.all(kXf)) {
    for (const char byte : globals.records[index].body) {
      crc ^= std::uint32_t{static_cast<unsigned char>(byte)} << 24;
      for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ (crc & 0x80000000 ? 0xAF : 0);
    }
  }
  return crc;
}

class Styles {
 public:
  explicit Styles(Globals& globals) : globals_(globals), fonts_(globals.all(kFont)), xfs_(globals.all(kXf)) {
    if (fonts_.empty()) raise_damaged("it has no fonts for its cells");
    if (xfs_.empty()) raise_damaged("it has no formats for its cells");
    for (const std::size_t index : globals.all(kXfExt)) extended_.insert(globals.records[index].u16(kExtendedXf));
    for (const std::size_t index : globals.all(kFormat)) {
      const Record& record = globals.records[index];
      formats_.insert_or_assign(record.u16(0), whole_text(record.body, 2, 2));
      format_numbers_.insert(record.u16(0));
    }
    for (const std::size_t index : xfs_) format_numbers_.insert(globals.records[index].u16(kXfFormat));
  }

  std::uint16_t number(const CellStyle& style) {
    const std::uint16_t format = format_number(style.number_format);
    const std::uint16_t font = font_number(style);
    Record xf = first_cell_xf();
    xf.set16(kXfFont, font);
    xf.set16(kXfFormat, format);
    const auto alignment = get<std::uint8_t>(xf.body, kXfAlignment);
    put<std::uint8_t>(xf.body, kXfAlignment,
                      static_cast<std::uint8_t>((alignment & ~kAlignmentBits) | (style.left ? kLeftAligned : 0)));
    const auto used = get<std::uint8_t>(xf.body, kXfUsed);
    put<std::uint8_t>(xf.body, kXfUsed, static_cast<std::uint8_t>(used | kUsesFormat | kUsesFont | kUsesAlignment));
    for (std::size_t number = 0; number < std::min(xfs_.size(), kMostXfs); ++number)
      if (record_of(xfs_[number]).body == xf.body && !extended_.contains(static_cast<std::uint16_t>(number)))
        return static_cast<std::uint16_t>(number);
    if (xfs_.size() >= kMostXfs) throw WorkbookError("it has no room for another cell format");
    add(std::move(xf), xfs_);
    return static_cast<std::uint16_t>(xfs_.size() - 1);
  }

 private:
  const Record& record_of(std::size_t index) const { return globals_.records[index]; }

  // Fonts, number formats and cell formats stand in this order, so a record moves those of the types behind its own.
  void add(Record record, std::vector<std::size_t>& indices) {
    const std::size_t place = globals_.place_for(record.type);
    for (auto* moved : {&fonts_, &xfs_})
      for (std::size_t& index : *moved) index += index >= place;
    globals_.insert(place, std::move(record));
    indices.push_back(place);
  }

  Record first_cell_xf() const {
    const auto is_cell = [this](std::size_t index) { return (record_of(index).u16(kXfFlags) & kStyleBit) == 0; };
    const auto first = std::ranges::find_if(xfs_, is_cell);
    Record xf = record_of(first == xfs_.end() ? xfs_.front() : *first);
    if (xf.body.size() != kXfSize) raise_damaged("it has a cell format of the wrong length");
    xf.set16(kXfFlags, xf.u16(kXfFlags) & ~kStyleBit);
    return xf;
  }

  // Fonts are numbered without a 4.
  static std::uint16_t font_number_at(std::size_t position) {
    return static_cast<std::uint16_t>(position < 4 ? position : position + 1);
  }

  std::uint16_t font_number(const CellStyle& style) {
    Record font = record_of(fonts_.front());
    if (style.bold) font.set16(kFontWeight, kBold);
    if (style.color_index != 0) font.set16(kFontColor, style.color_index + kColorsBeforePalette);
    const auto is_same = [&](std::size_t index) { return record_of(index).body == font.body; };
    const auto found = std::ranges::find_if(fonts_, is_same);
    const auto position = static_cast<std::size_t>(found - fonts_.begin());
    if (found == fonts_.end()) {
      if (fonts_.size() >= kMostFonts) throw WorkbookError("it has no room for another font");
      add(std::move(font), fonts_);
    }
    return font_number_at(position);
  }

  std::uint16_t format_number(const std::string& format) {
    const std::u16string text = text::from_utf8(format);
    // A workbook may give a reserved number to a format of its own country.
    if (const auto reserved = reserved_number_format(format)) {
      const auto own = formats_.find(*reserved);
      if (own == formats_.end() || own->second == text) return *reserved;
    }
    for (const auto& [number, its_text] : formats_)
      if (its_text == text) return number;
    const std::uint16_t number = free_format_number();
    formats_.emplace(number, text);
    format_numbers_.insert(number);
    std::vector<std::size_t> unused;
    add({kFormat, ByteWriter().u16(number).u16(static_cast<std::uint16_t>(text.size())).raw(text_units(text)).take()},
        unused);
    return number;
  }

  // Behind all others, or where there's room between them.
  std::uint16_t free_format_number() const {
    std::uint32_t number = kFirstOwnFormat;
    if (!format_numbers_.empty()) number = std::max(number, *format_numbers_.rbegin() + 1u);
    if (number >= kNoFormat) {
      number = kFirstOwnFormat;
      while (number < kNoFormat && format_numbers_.contains(static_cast<std::uint16_t>(number))) ++number;
    }
    if (number >= kNoFormat) throw WorkbookError("it has no room for another number format");
    return static_cast<std::uint16_t>(number);
  }

  Globals& globals_;
  std::vector<std::size_t> fonts_, xfs_;                            // indices of the records
  std::map<std::uint16_t, std::optional<std::u16string>> formats_;  // nothing where the text is cut off
  std::set<std::uint16_t> format_numbers_;                          // of formats, and those that cell formats name
  std::set<std::uint16_t> extended_;                                // cell formats that have more to them than their XF
};

}  // namespace

std::vector<std::uint16_t> add_styles(Globals& globals, const std::vector<CellStyle>& styles) {
  // A checksum that was wrong already must not become right: extensions that are ignored would count again.
  const auto stored = [&globals] { return globals.all(kXfCrc); };
  const bool was_right = !stored().empty() && globals.records[stored()[0]].u32(kXfChecksum) == checksum(globals);
  Styles table(globals);
  std::vector<std::uint16_t> numbers;
  numbers.reserve(styles.size());
  for (const CellStyle& style : styles) numbers.push_back(table.number(style));
  if (was_right) {
    Record& record = globals.records[stored()[0]];
    record.set16(kXfCount, globals.all(kXf).size());
    record.set32(kXfChecksum, checksum(globals));
  }
  return numbers;
}

}  // namespace trvtrout::spreadsheet::biff8
