#pragma once

#include <tuple>
#include <type_traits>

namespace trvtrout::vtrfile {

// One entry of a record's field list: the field's name and where it stands in the record.
template <class Record, class Member>
struct Field {
  const char* name;
  Member Record::*member;
};

template <class Record, class Member>
Field(const char*, Member Record::*) -> Field<Record, Member>;

template <class Type>
concept RecordType = requires {
  Type::fields();
};

// Calls visit(name, member) for each field of the record, in file order.
template <class Record, class Visit>
void for_each_field(Record& record, Visit&& visit) {
  static constexpr auto kFields = std::remove_const_t<Record>::fields();
  std::apply([&](const auto&... field) { (visit(field.name, record.*field.member), ...); }, kFields);
}

}  // namespace trvtrout::vtrfile

// The field list of a record in file order; stands at the end of the record's declaration. Reader, writer and every
// other walk over a record's fields go by it.
#define VTR_FIELDS(Record, ...) \
  static constexpr auto fields() { return std::tuple{VTR_EXPAND(VTR_EACH(Record, __VA_ARGS__))}; }

// The same for a record that begins with all fields of `Base`.
#define VTR_MORE_FIELDS(Base, Record, ...)                                                        \
  static constexpr auto fields() {                                                                \
    return std::tuple_cat(Base::fields(), std::tuple{VTR_EXPAND(VTR_EACH(Record, __VA_ARGS__))}); \
  }

#define VTR_FIELD(Record, name) \
  ::trvtrout::vtrfile::Field { #name, &Record::name }
#define VTR_EACH(Record, name, ...) VTR_FIELD(Record, name) __VA_OPT__(, VTR_EACH_AGAIN VTR_PARENS(Record, __VA_ARGS__))
// The preprocessor doesn't expand a macro inside itself; each scan below lets one more name through (48 in all).
#define VTR_EACH_AGAIN() VTR_EACH
#define VTR_PARENS ()
#define VTR_EXPAND(...) VTR_SCAN_4(VTR_SCAN_4(VTR_SCAN_4(__VA_ARGS__)))
#define VTR_SCAN_4(...) VTR_SCAN_3(VTR_SCAN_3(VTR_SCAN_3(VTR_SCAN_3(__VA_ARGS__))))
#define VTR_SCAN_3(...) VTR_SCAN_2(VTR_SCAN_2(VTR_SCAN_2(VTR_SCAN_2(__VA_ARGS__))))
#define VTR_SCAN_2(...) __VA_ARGS__
