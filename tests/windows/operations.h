#pragma once

#include <span>
#include <string_view>
#include <windows.h>

namespace trvtrout::tests {

// An operation of the interface, told independently of the type library. Its parameters, a letter each: S text,
// I 32-bit integer, B Boolean, D date, V variant, O object; small ones are passed by reference.
struct Operation {
  const wchar_t* name;
  const char* parameters;
  char result;
};

// In the order of their slots.
std::span<const Operation> operations();
// Raises out_of_range when there is none.
const Operation& operation_named(std::wstring_view name);

// The variant type of a letter, without its reference.
VARTYPE type_of(char letter);
inline bool by_reference(char letter) { return letter >= 'a'; }

}  // namespace trvtrout::tests
