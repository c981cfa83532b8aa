#include "differences/common_sequence.h"

#include <algorithm>
#include <cstddef>

namespace trvtrout::differences {
namespace {

using Sequence = std::vector<std::uint32_t>;

// The greedy search for a shortest way through the grid of both sequences: for each number of members that one sequence
// has alone, how far the way comes on each diagonal (the place in `one` less that in `other`).
class Search {
 public:
  Search(const Sequence& one, const Sequence& other)
      : one_(one),
        other_(other),
        steps_left_(64 * (one.size() + other.size()) + kLeast),
        room_left_(8 * (one.size() + other.size()) + kLeast) {}

  std::optional<std::vector<PlacePair>> run() {
    for (std::ptrdiff_t alone = 0;; ++alone) {
      const std::size_t width = 2 * static_cast<std::size_t>(alone) + 1;
      if (width > room_left_ || steps_left_ == 0) return {};
      room_left_ -= width;
      reached_.emplace_back(width);
      for (std::ptrdiff_t diagonal = -alone; diagonal <= alone; diagonal += 2) {
        if (advance(alone, diagonal)) return way_back(alone);
      }
    }
  }

 private:
  static constexpr std::size_t kLeast = 1 << 14;

  std::ptrdiff_t& reached(std::ptrdiff_t alone, std::ptrdiff_t diagonal) {
    return reached_[static_cast<std::size_t>(alone)][static_cast<std::size_t>(diagonal + alone)];
  }
  // The diagonal from which the way comes to this one.
  std::ptrdiff_t before(std::ptrdiff_t alone, std::ptrdiff_t diagonal) {
    const bool from_above = diagonal == -alone ||
                            (diagonal != alone && reached(alone - 1, diagonal - 1) < reached(alone - 1, diagonal + 1));
    return from_above ? diagonal + 1 : diagonal - 1;
  }
  std::ptrdiff_t entered(std::ptrdiff_t alone, std::ptrdiff_t diagonal) {
    if (alone == 0) return 0;
    const std::ptrdiff_t from = before(alone, diagonal);
    return reached(alone - 1, from) + (from < diagonal ? 1 : 0);
  }
  // True at the end of both.
  bool advance(std::ptrdiff_t alone, std::ptrdiff_t diagonal) {
    const auto count = std::ssize(one_), other_count = std::ssize(other_);
    std::ptrdiff_t at = entered(alone, diagonal);
    const auto same = [&] {
      return one_[static_cast<std::size_t>(at)] == other_[static_cast<std::size_t>(at - diagonal)];
    };
    while (steps_left_ > 0 && at < count && at - diagonal < other_count && same()) {
      ++at;
      --steps_left_;
    }
    reached(alone, diagonal) = at;
    return at >= count && at - diagonal >= other_count;
  }
  std::vector<PlacePair> way_back(std::ptrdiff_t alone) {
    std::vector<PlacePair> common;
    std::ptrdiff_t diagonal = std::ssize(one_) - std::ssize(other_);
    for (; alone >= 0; --alone) {
      const std::ptrdiff_t begin = entered(alone, diagonal);
      for (std::ptrdiff_t at = reached(alone, diagonal); at > begin; --at)
        common.emplace_back(at - 1, at - 1 - diagonal);
      if (alone > 0) diagonal = before(alone, diagonal);
    }
    return common;
  }

  const Sequence& one_;
  const Sequence& other_;
  std::size_t steps_left_, room_left_;
  std::vector<std::vector<std::ptrdiff_t>> reached_;
};

}  // namespace

std::optional<std::vector<PlacePair>> longest_common(const Sequence& one, const Sequence& other) {
  return Search(one, other).run();
}

}  // namespace trvtrout::differences
