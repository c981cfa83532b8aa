#include "vtrfile/value_types.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

#include "vtrfile/element_traits.h"
#include "vtrfile/sections.h"
#include "vtrfile/variant.h"

namespace trvtrout::vtrfile {
namespace {

template <class Type>
constexpr Type kEmpty{};

// The type of a member, and since which version it stands in files.
template <class Type>
struct Described {
  using Value = Type;
  static constexpr std::string_view kSince = {};
};
template <FormatVersion version, class Held>
struct Described<Since<version, Held>> {
  using Value = Held;
  static constexpr std::string_view kSince = Since<version, Held>::kVersion;
};

template <class Type>
consteval Kind kind_of() {
  if constexpr (std::is_same_v<Type, std::int16_t>) return Kind::kInt16;
  if constexpr (std::is_same_v<Type, std::int32_t>) return Kind::kInt32;
  if constexpr (std::is_same_v<Type, float>) return Kind::kFloat;
  if constexpr (std::is_same_v<Type, Flag>) return Kind::kFlag;
  if constexpr (std::is_same_v<Type, Text>) return Kind::kText;
  if constexpr (std::is_same_v<Type, Var>) return Kind::kVariant;
  if constexpr (std::is_same_v<Type, Array<unsigned char>>) return Kind::kBytes;
  if constexpr (kIsRaw<Type>) return Kind::kRaw;
  if constexpr (kIsVarRun<Type>) return Kind::kVariantRun;
  if constexpr (kIsArray<Type>) return Kind::kArray;
  if constexpr (kIsFixedArray<Type>) return Kind::kRun;
  if constexpr (RecordType<Type>) return Kind::kRecord;
}

template <class Type>
const ValueType& described();

template <class Element>
const ValueType* element_of(const Array<Element>&) {
  return &described<Element>();
}
template <class Element, std::size_t Size>
const ValueType* element_of(const std::array<Element, Size>&) {
  return &described<Element>();
}

template <class Record>
void describe_members(ValueType& type) {
  const Record record{};
  for_each_field(record, [&](const char* name, const auto& member) {
    using Member = Described<std::remove_cvref_t<decltype(member)>>;
    static_assert(sizeof(member) == sizeof(typename Member::Value));
    // Where it stands, in bytes.
    const auto offset = reinterpret_cast<std::uintptr_t>(&member) - reinterpret_cast<std::uintptr_t>(&record);
    const ValueType& described_member = described<typename Member::Value>();
    type.members.push_back({name, offset, &described_member, Member::kSince});
    if (!Member::kSince.empty() || !described_member.same_in_all_versions) type.same_in_all_versions = false;
  });
}

template <class Type>
ValueType describe() {
  constexpr Kind kKind = kind_of<Type>();
  ValueType type{kKind, "", sizeof(Type), 0, nullptr, {}, &kEmpty<Type>, true};
  if constexpr (kKind == Kind::kRaw) type.count = Type::kLeastBytes;
  if constexpr (kKind == Kind::kVariantRun) {
    type.count = Type::kSlots;
    type.element = &described<Var>();
  }
  if constexpr (kKind == Kind::kRun) type.count = std::tuple_size_v<Type>;
  if constexpr (kKind == Kind::kRun || kKind == Kind::kArray) {
    type.element = element_of(kEmpty<Type>);
    type.same_in_all_versions = type.element->same_in_all_versions;
  }
  if constexpr (kKind == Kind::kRecord) {
    type.name = Type::kName;
    describe_members<Type>(type);
  }
  return type;
}

template <class Type>
const ValueType& described() {
  static const ValueType kType = describe<Type>();
  return kType;
}

template <class Record>
Value record_value(const Record& record) {
  return {&record, described<Record>()};
}

// Where each of `count` variants from `at` on begins, and where the last one ends.
std::vector<const unsigned char*> places_of(const unsigned char* at, std::size_t count) {
  VariantWalk walk;
  std::vector<const unsigned char*> places{at};
  for (std::size_t slot = 0; slot < count; ++slot) places.push_back(walk.skip(places.back()));
  return places;
}

bool equal_variants(const unsigned char* a, const unsigned char* b, std::size_t count) {
  if (a == b) return true;
  if (!a || !b) return false;
  std::string one, other;
  append_variants(one, a, count);
  append_variants(other, b, count);
  return one == other;
}

bool equal_arrays(Value a, Value b) {
  const AnyArray& one = a.array();
  const AnyArray& other = b.array();
  return one.allocated() == other.allocated() && one.lower() == other.lower() && one.size() == other.size();
}

}  // namespace

std::span<const unsigned char> Value::bytes() const noexcept {
  if (kind() == Kind::kRaw) return {static_cast<const unsigned char*>(at_), type_->count};
  if (!array().allocated()) return {};
  const ArrayBlock& block = array().block();
  return {static_cast<const unsigned char*>(block.elements), std::min(block.stored, block.count)};
}

std::uint32_t Value::elements() const noexcept {
  return kind() == Kind::kRun ? static_cast<std::uint32_t>(type_->count) : static_cast<std::uint32_t>(array().size());
}

Value Value::element(std::uint32_t place) const noexcept {
  const ValueType& element = *type_->element;
  const void* first = at_;
  if (kind() == Kind::kArray) {
    const ArrayBlock& block = array().block();
    if (place >= block.stored) return {element.empty, element};
    first = block.elements;
  }
  return {static_cast<const std::byte*>(first) + place * element.size, element};
}

std::span<const unsigned char> Value::image_of(std::uint32_t place) const noexcept {
  const ArrayBlock& block = array().block();
  if (!block.places || place >= block.stored || !block.places[place + 1]) return {};
  return {block.places[place], block.places[place + 1]};
}

Value Value::member(std::string_view name) const {
  const auto found = std::ranges::find(type_->members, name, &MemberType::name);
  if (found == type_->members.end()) throw std::logic_error("a record without a member " + std::string(name));
  return member(*found);
}

std::vector<Var> slots_of(Value run) {
  std::vector<Var> slots(run.type().count);
  if (!run.run()) return slots;
  const auto places = places_of(run.run(), slots.size());
  std::ranges::transform(slots, places, slots.begin(), [](Var, const unsigned char* at) {
    return load<std::uint16_t>(at) == kVariantEmpty ? Var() : Var(at);
  });
  return slots;
}

namespace {

template <class Number>
void append_number(std::string& out, Number number) {
  out.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void append_array(std::string& out, Value value) {
  const AnyArray& array = value.array();
  append_number<std::uint16_t>(out, array.allocated() ? 1 : 0);
  if (!array.allocated()) return;
  append_number(out, static_cast<std::uint32_t>(array.size()));
  append_number(out, static_cast<std::int32_t>(array.lower()));
}

void append_run(std::string& out, const unsigned char* at, std::size_t count) {
  if (at) {
    append_variants(out, at, count);
  } else {
    out.append(2 * count, '\0');
  }
}

void append_bytes(std::string& out, std::span<const unsigned char> bytes) {
  out.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

}  // namespace

void append_written(std::string& out, Value value) {
  switch (value.kind()) {
    case Kind::kInt16:
    case Kind::kInt32:
    case Kind::kFloat:
      out.append(static_cast<const char*>(value.at()), value.type().size);
      break;
    case Kind::kFlag:
      append_number(out, static_cast<std::int16_t>(value.flag() ? -1 : 0));
      break;
    case Kind::kText:
      append_number(out, static_cast<std::uint16_t>(value.text().bytes().size()));
      out.append(value.text().bytes());
      break;
    case Kind::kRaw:
      append_bytes(out, value.bytes());
      break;
    case Kind::kVariant:
      append_run(out, value.variant().at(), 1);
      break;
    case Kind::kVariantRun:
      append_run(out, value.run(), value.type().count);
      break;
    case Kind::kBytes:
      append_array(out, value);
      append_bytes(out, value.bytes());
      if (value.array().allocated()) out.append(value.array().block().count - value.bytes().size(), '\0');
      break;
    case Kind::kArray:
      append_array(out, value);
      [[fallthrough]];
    case Kind::kRun:
      for (std::uint32_t place = 0; place < value.elements(); ++place) append_written(out, value.element(place));
      break;
    case Kind::kRecord:
      for (const MemberType& member : value.type().members) append_written(out, value.member(member));
      break;
  }
}

bool equal(Var a, Var b) { return equal_variants(a.at(), b.at(), 1); }

bool equal(Value a, Value b) {
  switch (a.kind()) {
    case Kind::kInt16:
    case Kind::kInt32:
      return a.integer() == b.integer();
    case Kind::kFloat:
      return std::bit_cast<std::uint32_t>(a.real()) == std::bit_cast<std::uint32_t>(b.real());
    case Kind::kFlag:
      return a.flag() == b.flag();
    case Kind::kText:
      return a.text() == b.text();
    case Kind::kRaw:
      return std::ranges::equal(a.bytes(), b.bytes());
    case Kind::kVariant:
      return equal(a.variant(), b.variant());
    case Kind::kVariantRun:
      return equal_variants(a.run(), b.run(), a.type().count);
    case Kind::kBytes:
      return equal_arrays(a, b) && std::ranges::equal(a.bytes(), b.bytes());
    case Kind::kArray:
      if (!equal_arrays(a, b)) return false;
      [[fallthrough]];
    case Kind::kRun:
      for (std::uint32_t place = 0; place < a.elements(); ++place) {
        if (!equal(a.element(place), b.element(place))) return false;
      }
      return true;
    case Kind::kRecord:
      return std::ranges::all_of(a.type().members,
                                 [&](const MemberType& member) { return equal(a.member(member), b.member(member)); });
  }
  return false;
}

bool is_empty(Value value) {
  if (value.kind() == Kind::kArray || value.kind() == Kind::kBytes) return !value.array().allocated();
  if (value.kind() == Kind::kRecord) {
    return std::ranges::all_of(value.type().members,
                               [&](const MemberType& member) { return is_empty(value.member(member)); });
  }
  return equal(value, {value.type().empty, value.type()});
}

Value header_of(const DocumentSlots& document) { return record_value(*document.Header); }

const ValueType& old_schema_type() { return described<SCHEMA_STRUCT_OLD1>(); }

std::vector<SectionValue> sections_of(const DocumentSlots& document) {
  std::vector<SectionValue> sections;
  for_each_section([&](const auto& section) {
    sections.push_back({section.tag, record_value(*(document.*section.kSlot))});
  });
  return sections;
}

}  // namespace trvtrout::vtrfile
