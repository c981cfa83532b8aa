#pragma once

#include <type_traits>

namespace trvtrout::vtrfile {

template <class Type>
concept RecordType = requires {
  typename Type::Listed;
};

// Calls visit(name, member) for each field of the record, in file order.
template <class Record, class Visit>
[[gnu::always_inline]] constexpr void for_each_field(Record& record, Visit&& visit) {
  std::remove_const_t<Record>::each_member(record, visit);
}

}  // namespace trvtrout::vtrfile

// The field list of a record in file order; stands at the end of the record's declaration. Reader, writer and every
// other walk over a record's fields go by it.
#define VTR_FIELDS(Record, ...) VTR_LIST(Record, void, , __VA_ARGS__)

// The same for a record that begins with all fields of `Base`.
#define VTR_MORE_FIELDS(Base, Record, ...) VTR_LIST(Record, Base, Base::each_member(self, visit);, __VA_ARGS__)

#define VTR_LIST(Record, Base, visit_base, ...)                                        \
  using Listed = Record;                                                               \
  using ListedBase = Base;                                                             \
  [[maybe_unused]] static constexpr const char* kName = #Record;                       \
  static constexpr const char* kListed = #__VA_ARGS__;                                 \
  template <class Self, class Visit>                                                   \
  [[gnu::always_inline]] static constexpr void each_member(Self& self, Visit& visit) { \
    visit_base VTR_EXPAND(VTR_EACH(__VA_ARGS__))                                       \
  }

#define VTR_EACH(name, ...) \
  visit(#name, self.name);  \
  __VA_OPT__(VTR_EACH_AGAIN VTR_PARENS(__VA_ARGS__))
// The preprocessor doesn't expand a macro inside itself; each scan below lets one more name through (64 in all).
#define VTR_EACH_AGAIN() VTR_EACH
#define VTR_PARENS ()
#define VTR_EXPAND(...) VTR_SCAN_4(VTR_SCAN_4(VTR_SCAN_4(__VA_ARGS__)))
#define VTR_SCAN_4(...) VTR_SCAN_3(VTR_SCAN_3(VTR_SCAN_3(VTR_SCAN_3(__VA_ARGS__))))
#define VTR_SCAN_3(...) VTR_SCAN_2(VTR_SCAN_2(VTR_SCAN_2(VTR_SCAN_2(__VA_ARGS__))))
#define VTR_SCAN_2(...) __VA_ARGS__
