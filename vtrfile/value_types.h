#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vtrfile/document.h"
#include "vtrfile/elements.h"

// The types of all values that a document holds, made from the field lists, for code that walks records of every type
// alike at run time.
namespace trvtrout::vtrfile {

enum class Kind : std::uint8_t {
  kInt16,
  kInt32,
  kFloat,
  kFlag,
  kText,
  kRaw,
  kVariant,
  kVariantRun,  // VarRun
  kRun,         // a fixed run of records or texts: std::array
  kBytes,       // an array of bytes
  kArray,       // of records or texts
  kRecord,
};

struct ValueType;

struct MemberType {
  const char* name;
  std::size_t offset;  // in the record, as it is in memory
  const ValueType* type;
  std::string_view since;  // the first format version that has it; empty for a member of all
};

struct ValueType {
  Kind kind;
  const char* name;                 // of a record type; empty for others
  std::size_t size;                 // bytes in memory
  std::size_t count;                // bytes of a kRaw, slots of a kVariantRun, elements of a kRun
  const ValueType* element;         // of a kRun, kArray or kVariantRun
  std::vector<MemberType> members;  // of a kRecord, in file order
  const void* empty;                // a value of the type, as one that was never filled
  // Whether equal bytes in files of any version stand for equal values: no member came with a later version.
  bool same_in_all_versions;
};

// A value in a document, which must outlive it. Each reading is for values of the kind that it names.
class Value {
 public:
  Value() noexcept = default;
  Value(const void* at, const ValueType& type) noexcept : at_(at), type_(&type) {}

  const ValueType& type() const noexcept { return *type_; }
  Kind kind() const noexcept { return type_->kind; }
  // Where it is in memory.
  const void* at() const noexcept { return at_; }

  // kInt16, kInt32
  std::int32_t integer() const noexcept { return kind() == Kind::kInt16 ? as<std::int16_t>() : as<std::int32_t>(); }
  float real() const noexcept { return as<float>(); }
  bool flag() const noexcept { return bool(as<Flag>()); }
  Text text() const noexcept { return as<Text>(); }
  // kRaw; of a kBytes those that the file held.
  std::span<const unsigned char> bytes() const noexcept;
  Var variant() const noexcept { return as<Var>(); }
  // kVariantRun: where its first variant stands; null when all are Empty.
  const unsigned char* run() const noexcept { return as<VarRun<1>>().at(); }

  // kArray, kBytes
  const AnyArray& array() const noexcept { return as<AnyArray>(); }
  // Elements of a kArray (those behind the end of the file included) or kRun.
  std::uint32_t elements() const noexcept;
  // The element at this place, counted from 0 and below elements().
  Value element(std::uint32_t place) const noexcept;
  // The bytes of this element of a kArray as they stood in the file; none when that isn't known.
  std::span<const unsigned char> image_of(std::uint32_t place) const noexcept;

  // kRecord
  Value member(const MemberType& member) const noexcept {
    return {static_cast<const std::byte*>(at_) + member.offset, *member.type};
  }
  // The member with this name; the record must have it.
  Value member(std::string_view name) const;

 private:
  template <class Type>
  const Type& as() const noexcept {
    return *static_cast<const Type*>(at_);
  }

  const void* at_ = nullptr;
  const ValueType* type_ = nullptr;
};

// The slots of a kVariantRun one by one.
std::vector<Var> slots_of(Value run);

// Appends the value as it's written to a file of the current format.
void append_written(std::string& out, Value value);

// Whether both, of one type, are written as the same bytes.
bool equal(Value a, Value b);
bool equal(Var a, Var b);
// Whether the value is as one that was never filled. An array is when it's unallocated.
bool is_empty(Value value);

// A section of a document: its tag and its record.
struct SectionValue {
  std::string_view tag;
  Value record;
};

Value header_of(const DocumentSlots& document);
// The type of the section "Schema" in a file of the old format.
const ValueType& old_schema_type();
// All sections in the order in which they are written. Those of an empty document tell the types.
std::vector<SectionValue> sections_of(const DocumentSlots& document);

}  // namespace trvtrout::vtrfile
