#include "exchange/json_values.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "vtrfile/variant.h"

namespace trvtrout::exchange {
namespace {

using vtrfile::Kind;
using vtrfile::load;
using vtrfile::Text;
using vtrfile::Value;
using vtrfile::Var;

using Place = const unsigned char*;

class ValueWriter {
 public:
  ValueWriter(JsonWriter& json, Texts& texts) : json_(json), texts_(texts) {}

  void write(Value value);
  // The variant at `at`; where it ends.
  Place variant(Place at);

 private:
  void text(std::string_view bytes);
  template <class Number>
  void real(Number number);
  void variant_run(Value run);
  void array(Value array);
  void bytes(Value array);
  void elements(Value list);
  Place body(std::uint16_t tag, Place at);
  Place variant_array(std::uint16_t element_tag, Place at);
  void hex_object(std::span<const unsigned char> bytes) {
    json_.begin_object();
    json_.key("hex");
    json_.hex(bytes);
    json_.end_object();
  }

  JsonWriter& json_;
  Texts& texts_;
};

std::span<const unsigned char> bytes_of(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

void ValueWriter::write(Value value) {
  switch (value.kind()) {
    case Kind::kInt16:
    case Kind::kInt32:
      return json_.number(std::int64_t{value.integer()});
    case Kind::kFloat:
      return real(value.real());
    case Kind::kFlag:
      return json_.boolean(value.flag());
    case Kind::kText:
      return text(value.text().bytes());
    case Kind::kRaw:
      return json_.hex(value.bytes());
    case Kind::kVariant:
      if (value.variant().empty()) return json_.null();
      variant(value.variant().at());
      return;
    case Kind::kVariantRun:
      return variant_run(value);
    case Kind::kBytes:
      return bytes(value);
    case Kind::kArray:
      return array(value);
    case Kind::kRun:
      return elements(value);
    case Kind::kRecord:
      json_.begin_object();
      for (const vtrfile::MemberType& member : value.type().members) {
        json_.key(member.name);
        write(value.member(member));
      }
      return json_.end_object();
  }
}

void ValueWriter::text(std::string_view bytes) {
  if (const auto utf8 = texts_.to_utf8(bytes)) {
    json_.string(*utf8);
  } else {
    hex_object(bytes_of(bytes));
  }
}

template <class Number>
void ValueWriter::real(Number number) {
  if (std::isfinite(number)) return json_.number(number);
  hex_object({reinterpret_cast<Place>(&number), sizeof number});
}

void ValueWriter::variant_run(Value run) {
  const auto slots = run.run() ? slots_of(run) : std::vector<Var>();
  if (std::ranges::all_of(slots, &Var::empty)) return json_.null();
  json_.begin_array();
  for (const Var slot : slots) slot.empty() ? json_.null() : static_cast<void>(variant(slot.at()));
  json_.end_array();
}

void ValueWriter::array(Value array) {
  if (!array.array().allocated()) return json_.null();
  if (array.array().lower() == 1) return elements(array);
  json_.begin_object();
  json_.key("lower");
  json_.number(array.array().lower());
  json_.key("items");
  elements(array);
  json_.end_object();
}

void ValueWriter::elements(Value list) {
  json_.begin_array();
  for (std::uint32_t place = 0; place < list.elements(); ++place) write(list.element(place));
  json_.end_array();
}

void ValueWriter::bytes(Value array) {
  if (!array.array().allocated()) return json_.null();
  const auto stored = array.bytes();
  const auto digits = [&] { json_.hex(stored, static_cast<std::size_t>(array.array().size()) - stored.size()); };
  if (array.array().lower() == 1) return digits();
  json_.begin_object();
  json_.key("lower");
  json_.number(array.array().lower());
  json_.key("hex");
  digits();
  json_.end_object();
}

Place ValueWriter::variant(Place at) {
  const auto tag = load<std::uint16_t>(at);
  at += sizeof tag;
  if (tag == vtrfile::kVariantEmpty) return json_.null(), at;
  json_.begin_object();
  json_.key("type");
  json_.number(std::int64_t{tag});
  if (tag >= vtrfile::kVariantArray) {
    at = variant_array(static_cast<std::uint16_t>(tag - vtrfile::kVariantArray), at);
  } else if (tag != vtrfile::kVariantNull) {
    json_.key("value");
    at = body(tag, at);
  }
  json_.end_object();
  return at;
}

Place ValueWriter::variant_array(std::uint16_t element_tag, Place at) {
  const auto dimensions = load<std::uint16_t>(at);
  at += sizeof dimensions;
  if (dimensions == 0) {
    json_.key("items");
    json_.null();
    return at;
  }
  const auto count = load<std::uint32_t>(at);
  json_.key("lower");
  json_.number(std::int64_t{load<std::int32_t>(at + sizeof count)});
  at += sizeof count + sizeof(std::int32_t);
  json_.key("items");
  json_.begin_array();
  for (std::uint32_t element = 0; element < count; ++element) at = body(element_tag, at);
  json_.end_array();
  return at;
}

Place ValueWriter::body(std::uint16_t tag, Place at) {
  switch (tag) {
    case vtrfile::kVariantByte:
      return json_.number(std::int64_t{*at}), at + 1;
    case vtrfile::kVariantInteger:
      return json_.number(std::int64_t{load<std::int16_t>(at)}), at + 2;
    case vtrfile::kVariantFlag:
      return json_.boolean(load<std::int16_t>(at) != 0), at + 2;
    case vtrfile::kVariantLong:
      return json_.number(std::int64_t{load<std::int32_t>(at)}), at + 4;
    case vtrfile::kVariantSingle:
      return real(load<float>(at)), at + 4;
    case vtrfile::kVariantDouble:
    case vtrfile::kVariantDate:
      return real(load<double>(at)), at + 8;
    case vtrfile::kVariantCurrency:
      return json_.string(std::to_string(load<std::int64_t>(at))), at + 8;
    case vtrfile::kVariantText: {
      const std::string_view bytes = Text(at).bytes();
      return text(bytes), at + Text::kLeastBytes + bytes.size();
    }
    default:  // of those that were read there are no others
      return variant(at);
  }
}

}  // namespace

void write_value(JsonWriter& json, Texts& texts, Value value) { ValueWriter(json, texts).write(value); }

void write_value(JsonWriter& json, Texts& texts, Var variant) {
  if (variant.empty()) return json.null();
  ValueWriter(json, texts).variant(variant.at());
}

}  // namespace trvtrout::exchange
