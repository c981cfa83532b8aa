#include "host/terminal/sequence.h"

#include <algorithm>
#include <cstdint>

namespace trvtrout::host {
namespace {

using Parts = std::vector<std::string_view>;
using In = Piece::In;

// How long the longest sequence is that both have from each two places on.
class CommonLengths {
 public:
  CommonLengths(const Parts& one, const Parts& other) : width_(other.size() + 1), lengths_((one.size() + 1) * width_) {
    for (std::size_t at = one.size(); at-- > 0;) {
      for (std::size_t beside = other.size(); beside-- > 0;) {
        lengths_[at * width_ + beside] = one[at] == other[beside]
                                             ? length(at + 1, beside + 1) + 1
                                             : std::max(length(at + 1, beside), length(at, beside + 1));
      }
    }
  }
  std::uint32_t length(std::size_t at, std::size_t beside) const { return lengths_[at * width_ + beside]; }

 private:
  std::size_t width_;
  std::vector<std::uint32_t> lengths_;
};

void add_all(std::vector<Piece>& pieces, In in, const Parts& parts) {
  for (const std::string_view part : parts) pieces.push_back({in, part});
}

void add_middle(std::vector<Piece>& pieces, const Parts& one, const Parts& other) {
  constexpr std::size_t kMost = 40'000;
  if (one.empty() || other.empty() || one.size() > kMost / other.size()) {
    add_all(pieces, In::kOldAlone, one);
    add_all(pieces, In::kNewAlone, other);
    return;
  }
  const CommonLengths common(one, other);
  std::size_t at = 0, beside = 0;
  while (at < one.size() || beside < other.size()) {
    if (at < one.size() && beside < other.size() && one[at] == other[beside]) {
      pieces.push_back({In::kBoth, one[at++]});
      ++beside;
    } else if (beside == other.size() ||
               (at < one.size() && common.length(at + 1, beside) >= common.length(at, beside + 1))) {
      pieces.push_back({In::kOldAlone, one[at++]});
    } else {
      pieces.push_back({In::kNewAlone, other[beside++]});
    }
  }
}

}  // namespace

std::vector<Piece> pieces_of(const Parts& old_parts, const Parts& new_parts) {
  std::vector<Piece> pieces;
  const auto front = std::ranges::mismatch(old_parts, new_parts);
  const Parts old_rest(front.in1, old_parts.end()), new_rest(front.in2, new_parts.end());
  const std::size_t shorter = std::min(old_rest.size(), new_rest.size());
  std::size_t behind = 0;
  while (behind < shorter && old_rest[old_rest.size() - 1 - behind] == new_rest[new_rest.size() - 1 - behind]) ++behind;
  const auto end = [&](const Parts& parts) { return parts.end() - static_cast<std::ptrdiff_t>(behind); };
  add_all(pieces, In::kBoth, {old_parts.begin(), front.in1});
  add_middle(pieces, {old_rest.begin(), end(old_rest)}, {new_rest.begin(), end(new_rest)});
  add_all(pieces, In::kBoth, {end(old_rest), old_rest.end()});
  return pieces;
}

Parts words_of(std::string_view text) {
  Parts words;
  while (!text.empty()) {
    const std::size_t blank = std::min(text.find(' '), text.size());
    const std::size_t next = std::min(text.find_first_not_of(' ', blank), text.size());
    words.push_back(text.substr(0, next));
    text.remove_prefix(next);
  }
  return words;
}

Parts lines_of(std::string_view text) {
  Parts lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(text.size(), end + (text.substr(end).starts_with("\r\n") ? 2 : 1)));
  }
  return lines;
}

}  // namespace trvtrout::host
