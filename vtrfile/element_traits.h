#pragma once

#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include "vtrfile/elements.h"
#include "vtrfile/field_check.h"
#include "vtrfile/fields.h"
#include "vtrfile/format_version.h"

// What the type of a record's member says of its form in the file.
namespace trvtrout::vtrfile {

template <class Type>
constexpr bool kIsNumber = std::is_arithmetic_v<Type>;
template <class Type>
constexpr bool kIsVarRun = false;
template <std::size_t Slots>
constexpr bool kIsVarRun<VarRun<Slots>> = true;
template <class Type>
constexpr bool kIsArray = false;
template <class Element>
constexpr bool kIsArray<Array<Element>> = true;
template <class Type>
constexpr bool kIsRaw = false;
template <std::size_t Width>
constexpr bool kIsRaw<Raw<Width>> = true;
template <class Type>
constexpr bool kIsFixedArray = false;
template <class Element, std::size_t Size>
constexpr bool kIsFixedArray<std::array<Element, Size>> = true;

template <class Type>
constexpr bool kIsSince = false;
template <FormatVersion version, class Value>
constexpr bool kIsSince<Since<version, Value>> = true;

// A value that has as many bytes in the file as in memory, whatever it holds.
template <class Type>
constexpr bool kIsPlain = kIsNumber<Type> || kIsRaw<Type> || std::is_same_v<Type, Flag>;

// A plain value or a text is read whatever the bytes are; only in front of the others a step of the path is due.
template <class Type>
constexpr bool kCanFail = !kIsPlain<Type> && !std::is_same_v<Type, Text>;
template <FormatVersion version, class Value>
constexpr bool kCanFail<Since<version, Value>> = kCanFail<Value>;

// The fewest bytes that a value takes in the file.
template <class Type>
consteval std::size_t least_bytes() {
  if constexpr (kIsNumber<Type>) {
    return sizeof(Type);
  } else if constexpr (kIsFixedArray<Type>) {
    return std::tuple_size_v<Type> * least_bytes<typename Type::value_type>();
  } else if constexpr (RecordType<Type>) {
    static_assert(names_all_members<Type>(), "the field list of this record doesn't name each of its members once");
    std::size_t bytes = 0;
    Type record{};
    for_each_field(record, [&]<class Member>(const char*, Member&) { bytes += least_bytes<Member>(); });
    return bytes;
  } else {
    return Type::kLeastBytes;
  }
}

}  // namespace trvtrout::vtrfile
