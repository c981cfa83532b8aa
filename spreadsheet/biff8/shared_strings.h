#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "spreadsheet/biff8/globals.h"

namespace trvtrout::spreadsheet::biff8 {

// The workbook's table of texts (SST), which may go on in CONTINUE records, and the index of where they stand (EXTSST).
class SharedStrings {
 public:
  // Raises WorkbookError where the table isn't whole.
  explicit SharedStrings(const Globals& globals);

  std::size_t size() const { return places_.size(); }
  // The number of a text (UTF-8), which must outlive the table; added if it wasn't given before. What the workbook has
  // already isn't searched.
  std::uint32_t number(std::string_view text);
  // A text of the table (UTF-8); nothing for a number that it doesn't have, or where the text is cut off.
  std::optional<std::string> text(std::uint32_t number) const;
  // So many cells with this text are no more. If the text comes again it keeps its number, unless it has formats of its
  // own.
  void release(std::uint32_t number, std::uint32_t cells);
  // Puts the table back, with an index whose places in the stream mend_index fills in.
  void store(Globals& globals) const;
  // `stream` begins with the globals that the table was put into.
  void mend_index(const Globals& globals, std::string& stream) const;

 private:
  // Where a text begins in the bodies.
  struct Place {
    std::uint32_t part, at;
  };

  void read_places(std::uint32_t count);
  void append(std::u16string_view text);
  std::size_t bucket_size() const { return std::clamp<std::size_t>(places_.size() / 128 + 1, 8, 0xFFFF); }

  std::vector<std::string> parts_;  // the bodies of the SST and its CONTINUEs
  std::vector<Place> places_;
  std::deque<std::string> released_;
  std::unordered_map<std::string_view, std::uint32_t> numbers_;  // by texts that were given, and those of released_
  std::uint32_t uses_ = 0;
};

}  // namespace trvtrout::spreadsheet::biff8
