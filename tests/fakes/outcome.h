#pragma once

#include <functional>
#include <string>

#include "reports/host_services.h"

namespace trvtrout::fakes {

// The service error that came of an action; number 0: none did.
struct Outcome {
  int number = 0;
  std::string what;
};

inline Outcome outcome(const std::function<void()>& action) {
  try {
    action();
  } catch (const ServiceError& error) {
    return {error.number(), error.what()};
  }
  return {};
}

}  // namespace trvtrout::fakes
