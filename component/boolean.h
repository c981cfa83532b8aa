#pragma once

#include <cstdint>

namespace trvtrout {

// The two-valued flag of the interface. It can hold any 16-bit value; a result is True or False.
struct Boolean {
  std::int16_t value = 0;
  explicit constexpr operator bool() const noexcept { return value != 0; }
  bool operator==(const Boolean&) const = default;
};

inline constexpr Boolean True{-1};
inline constexpr Boolean False{0};

}  // namespace trvtrout
