#pragma once

#include <string_view>
#include <vector>

namespace trvtrout::host {

// A piece of two texts that were held against each other.
struct Piece {
  enum class In { kBoth, kOldAlone, kNewAlone } in;
  std::string_view text;
};

// What both sequences have in common, and what one has alone, in order; of long ones that differ much, more than need
// be is told as different. What both have is the longest there is up to then.
std::vector<Piece> pieces_of(const std::vector<std::string_view>& old_parts,
                             const std::vector<std::string_view>& new_parts);

// The words of a text, each with the blanks behind it.
std::vector<std::string_view> words_of(std::string_view text);
// The lines of a text without their ends, which are CR LF, CR or LF.
std::vector<std::string_view> lines_of(std::string_view text);

}  // namespace trvtrout::host
