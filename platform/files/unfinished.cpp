#include "platform/files/unfinished.h"

#include <atomic>
#include <climits>
#include <iterator>
#include <unistd.h>

namespace trvtrout::platform {
namespace {

enum class Use { kFree, kTaken, kNamed };

// In fixed places, where a signal handler may look. One that finds no place is left behind by a signal.
struct Place {
  std::atomic<Use> use{Use::kFree};
  char path[PATH_MAX];
};
Place places[512];
std::atomic<bool> removed = false;

}  // namespace

Unfinished::Unfinished(const std::string& path) : place_(std::size(places)) {
  if (path.size() >= PATH_MAX) return;
  for (std::size_t place = 0; place < std::size(places); ++place) {
    Use expected = Use::kFree;
    if (!places[place].use.compare_exchange_strong(expected, Use::kTaken)) continue;
    path.copy(places[place].path, path.size());
    places[place].path[path.size()] = '\0';
    places[place].use = Use::kNamed;
    place_ = place;
    return;
  }
}

Unfinished::~Unfinished() {
  if (place_ < std::size(places)) places[place_].use = Use::kFree;
}

void Unfinished::is_there() const {
  if (!removed) return;
  if (place_ < std::size(places)) unlink(places[place_].path);
  for (;;) pause();
}

void remove_unfinished() noexcept {
  removed = true;
  for (const Place& place : places) {
    if (place.use == Use::kNamed) unlink(place.path);
  }
}

}  // namespace trvtrout::platform
