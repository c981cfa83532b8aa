// The library's vector instructions (RAPIDJSON_SSE2) stay off: in version 1.1.0 they let the control characters 1A to
// 1F through unescaped.
#include "exchange/json_writer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <ostream>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <string>
#include <utility>

namespace trvtrout::exchange {
namespace {

constexpr std::size_t kFlushedAt = 65536;

rapidjson::SizeType size_of(std::string_view text) { return static_cast<rapidjson::SizeType>(text.size()); }

// A zero below 0 is written as a number with a fraction: many readers take "-0" for the integer, which has no sign.
template <class Number>
std::string_view spelled(Number number, std::span<char> room) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (number == 0) return std::signbit(number) ? "-0.0" : "0";
  }
  const auto [end, error] = std::to_chars(room.data(), room.data() + room.size(), number);
  return {room.data(), end};
}

}  // namespace

// Of the two writers the one of the layout is used.
struct JsonWriter::Buffered {
  rapidjson::StringBuffer buffer{nullptr, kFlushedAt + kFlushedAt / 2};
  rapidjson::Writer<rapidjson::StringBuffer> compact{buffer};
  rapidjson::PrettyWriter<rapidjson::StringBuffer> pretty{buffer};
};

JsonWriter::JsonWriter(Sink sink, Layout layout)
    : sink_(std::move(sink)), layout_(layout), buffered_(std::make_unique<Buffered>()) {
  buffered_->pretty.SetIndent(' ', 2);
}

JsonWriter::JsonWriter(std::ostream& out, Layout layout)
    : JsonWriter(
          [&out](std::string_view bytes) { out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); },
          layout) {}

JsonWriter::~JsonWriter() = default;

template <class Call>
void JsonWriter::write(Call call) {
  layout_ == Layout::kCompact ? call(buffered_->compact) : call(buffered_->pretty);
  if (buffered_->buffer.GetSize() >= kFlushedAt) flush();
}

void JsonWriter::begin_object() {
  write([](auto& to) { to.StartObject(); });
}

void JsonWriter::end_object() {
  write([](auto& to) { to.EndObject(); });
}

void JsonWriter::begin_array() {
  write([](auto& to) { to.StartArray(); });
}

void JsonWriter::end_array() {
  write([](auto& to) { to.EndArray(); });
}

void JsonWriter::key(std::string_view name) {
  write([&](auto& to) { to.Key(name.data(), size_of(name)); });
}

void JsonWriter::null() {
  write([](auto& to) { to.Null(); });
}

void JsonWriter::boolean(bool value) {
  write([&](auto& to) { to.Bool(value); });
}

void JsonWriter::number(std::int64_t value) {
  write([&](auto& to) { to.Int64(value); });
}

void JsonWriter::number(float value) {
  std::array<char, 32> room;
  const std::string_view digits = spelled(value, room);
  write([&](auto& to) { to.RawValue(digits.data(), digits.size(), rapidjson::kNumberType); });
}

void JsonWriter::number(double value) {
  std::array<char, 32> room;
  const std::string_view digits = spelled(value, room);
  write([&](auto& to) { to.RawValue(digits.data(), digits.size(), rapidjson::kNumberType); });
}

void JsonWriter::string(std::string_view utf8) {
  write([&](auto& to) { to.String(utf8.empty() ? "" : utf8.data(), size_of(utf8)); });
}

void JsonWriter::hex(std::span<const unsigned char> bytes, std::size_t zeros) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string digits;
  digits.reserve(2 * (bytes.size() + zeros));
  for (const unsigned char byte : bytes) {
    digits += kDigits[byte >> 4];
    digits += kDigits[byte & 0xF];
  }
  digits.append(2 * zeros, '0');
  string(digits);
}

void JsonWriter::end_line() {
  buffered_->buffer.Put('\n');
  buffered_->compact.Reset(buffered_->buffer);
  buffered_->pretty.Reset(buffered_->buffer);
}

void JsonWriter::flush() {
  rapidjson::StringBuffer& buffer = buffered_->buffer;
  sink_({buffer.GetString(), buffer.GetSize()});
  buffer.Clear();
}

}  // namespace trvtrout::exchange
