#include "spreadsheet/biff8/records.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace trvtrout::spreadsheet::biff8 {

RecordView record_at(std::string_view stream, std::size_t at) {
  if (at > stream.size() || stream.size() - at < kRecordHead)
    raise_damaged("its records end early, at byte " + std::to_string(at) + " of the stream Workbook");
  const auto type = get<std::uint16_t>(stream, at);
  const std::size_t length = get<std::uint16_t>(stream, at + 2);
  if (stream.size() - at - kRecordHead < length)
    raise_damaged("the record at byte " + std::to_string(at) + " of the stream Workbook is cut off");
  return {type, at, stream.substr(at + kRecordHead, length)};
}

void Record::check(std::size_t end) const {
  if (body.size() >= end) return;
  std::array<char, 4> number{};
  char* number_end = std::to_chars(number.begin(), number.end(), type, 16).ptr;
  raise_damaged("a record of the type " + std::string(number.begin(), number_end) + "h in it is too short");
}

std::uint16_t Record::u16(std::size_t at) const {
  check(at + sizeof(std::uint16_t));
  return get<std::uint16_t>(body, at);
}

std::uint32_t Record::u32(std::size_t at) const {
  check(at + sizeof(std::uint32_t));
  return get<std::uint32_t>(body, at);
}

void Record::set16(std::size_t at, std::size_t value) {
  check(at + sizeof(std::uint16_t));
  put(body, at, static_cast<std::uint16_t>(value));
}

void Record::set32(std::size_t at, std::size_t value) {
  check(at + sizeof(std::uint32_t));
  put(body, at, static_cast<std::uint32_t>(value));
}

void append_record(std::string& stream, const Record& record) {
  stream += ByteWriter().u16(record.type).u16(static_cast<std::uint16_t>(record.body.size())).bytes();
  stream += record.body;
}

std::optional<std::u16string> whole_text(std::string_view body, std::size_t from, std::size_t length_size) {
  const std::size_t begin = from + length_size + 1;
  if (body.size() < begin) return std::nullopt;
  const std::size_t length = length_size == 1 ? get<std::uint8_t>(body, from) : get<std::uint16_t>(body, from);
  const bool wide = get<std::uint8_t>(body, from + length_size) & 1;
  if ((body.size() - begin) / (wide ? 2 : 1) < length) return std::nullopt;
  std::u16string text;
  for (std::size_t at = begin; text.size() < length; at += wide ? 2 : 1)
    text += wide ? get<char16_t>(body, at) : char16_t{get<std::uint8_t>(body, at)};
  return text;
}

std::u16string read_text(std::string_view body, std::size_t from, std::size_t length_size) {
  std::optional<std::u16string> text = whole_text(body, from, length_size);
  if (!text) raise_damaged("a text in it is cut off");
  return std::move(*text);
}

std::string text_units(std::u16string_view text) {
  const bool wide = std::ranges::any_of(text, [](char16_t unit) { return unit > 0xFF; });
  ByteWriter units;
  units.u8(wide);
  for (const char16_t unit : text) wide ? units.u16(unit) : units.u8(static_cast<std::uint8_t>(unit));
  return units.take();
}

}  // namespace trvtrout::spreadsheet::biff8
