#pragma once

#include <chrono>

namespace trvtrout::text {

// The day from which dates are counted as whole days.
inline constexpr std::chrono::sys_days kDayZero = std::chrono::year{1899} / 12 / 30;

// The year that two digits stand for: 00 to 29 are of this century, 30 to 99 of the last one.
constexpr int year_of_two_digits(int year) { return year + (year < 30 ? 2000 : 1900); }

}  // namespace trvtrout::text
