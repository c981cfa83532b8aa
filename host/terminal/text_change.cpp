#include "host/terminal/text_change.h"

#include <algorithm>

#include "host/terminal/sequence.h"
#include "host/terminal/value_text.h"

namespace trvtrout::host {
namespace {

using In = Piece::In;
using Lines = std::vector<std::string>;

// Texts up to this length, together, are shown whole.
constexpr std::size_t kShort = 100;
// Words shown on each side of one that differs.
constexpr std::size_t kAround = 3;

std::string joined(const std::vector<Piece>& pieces, std::size_t begin, std::size_t end) {
  std::string text;
  for (std::size_t at = begin; at < end; ++at) text += pieces[at].text;
  return text;
}

std::size_t end_of_run(const std::vector<Piece>& pieces, std::size_t begin) {
  std::size_t end = begin;
  while (end < pieces.size() && pieces[end].in == pieces[begin].in) ++end;
  return end;
}

// Of words that both texts have: those beside the ones that differ.
std::string around(Locale& locale, const std::vector<Piece>& pieces, std::size_t begin, std::size_t end) {
  const std::size_t first = begin == 0 ? 0 : kAround, last = end == pieces.size() ? 0 : kAround;
  if (end - begin <= first + last + 1) return shown(locale, joined(pieces, begin, end));
  return shown(locale, joined(pieces, begin, begin + first)) + "... " + shown(locale, joined(pieces, end - last, end));
}

std::string word_change(Locale& locale, const Painter& painter, std::string_view old_text, std::string_view new_text) {
  const auto pieces = pieces_of(words_of(old_text), words_of(new_text));
  std::string line;
  for (std::size_t at = 0; at < pieces.size();) {
    const std::size_t end = end_of_run(pieces, at);
    const std::string text = shown(locale, joined(pieces, at, end));
    switch (pieces[at].in) {
      case In::kBoth:
        line += around(locale, pieces, at, end);
        break;
      case In::kOldAlone:
        line += painter.removed_part(text);
        break;
      case In::kNewAlone:
        line += painter.added_part(text);
        break;
    }
    at = end;
  }
  return line;
}

Lines line_changes(Locale& locale, const Painter& painter, std::string_view old_text, std::string_view new_text) {
  const auto pieces = pieces_of(lines_of(old_text), lines_of(new_text));
  Lines lines{""};
  std::size_t number = 1;  // in the old text
  bool in_change = false;
  for (const Piece& piece : pieces) {
    if (piece.in != In::kBoth) {
      if (!in_change) lines.push_back(painter.aside("line " + std::to_string(number) + ":"));
      const std::string text = shown(locale, piece.text);
      lines.push_back(piece.in == In::kOldAlone ? painter.removed("- " + text) : painter.added("+ " + text));
    }
    in_change = piece.in != In::kBoth;
    if (piece.in != In::kNewAlone) ++number;
  }
  if (lines.size() == 1) lines.front() = "only the line ends differ";
  return lines;
}

}  // namespace

Lines text_change(Locale& locale, const Painter& painter, std::string_view old_text, std::string_view new_text) {
  const auto has_lines = [](std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; };
  if (old_text.size() + new_text.size() <= kShort) {
    const std::string old_shown = '"' + shown(locale, old_text) + '"', new_shown = '"' + shown(locale, new_text) + '"';
    // A line end looks like a backslash with an "n".
    const char* const unlike = old_shown == new_shown ? ", with other content" : "";
    return {painter.removed(old_shown) + " -> " + painter.added(new_shown + unlike)};
  }
  if (has_lines(old_text) || has_lines(new_text)) return line_changes(locale, painter, old_text, new_text);
  return {word_change(locale, painter, old_text, new_text)};
}

}  // namespace trvtrout::host
