#pragma once

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "services/host_services.h"

namespace trvtrout {

// Why an operation failed.
struct Failure {
  ErrorNumber number = ErrorNumber::kNone;
  std::string what;  // for people
};

// The failure path of an operation: returns body(), or failed(Failure) when it raises. What the body opened is closed
// and released by then.
template <class Body, class Failed>
auto guarded(Body&& body, Failed&& failed) -> decltype(body()) {
  try {
    return std::forward<Body>(body)();
  } catch (const ServiceError& error) {
    return std::forward<Failed>(failed)(Failure{error.number(), error.what()});
  } catch (const std::bad_alloc&) {
    return std::forward<Failed>(failed)(Failure{ErrorNumber::kNone, "there is not enough memory"});
  } catch (const std::exception& error) {
    return std::forward<Failed>(failed)(Failure{ErrorNumber::kNone, error.what()});
  }
}

// Closes a file or stream at the end of the work on it. Raises what its Close raises.
template <class Opened>
void close_done(std::unique_ptr<Opened>& opened) {
  std::exchange(opened, nullptr)->Close();
}

// Closes what is still open where an operation fails, whatever comes of it.
template <class Opened>
void close_failed(std::unique_ptr<Opened>& opened) {
  if (opened) guarded([&] { return close_done(opened), true; }, [](const Failure&) { return false; });
}

}  // namespace trvtrout
