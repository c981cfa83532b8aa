#pragma once

#include <oaidl.h>
#include <span>

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

// The variant type of a letter, without its reference.
VARTYPE type_of(char letter);
inline bool by_reference(char letter) { return letter >= 'a'; }

}  // namespace trvtrout::tests
