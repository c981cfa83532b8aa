#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "spreadsheet/biff8/records.h"

namespace trvtrout::spreadsheet::biff8 {

// The records that concern the whole workbook, from its first BOF to its first EOF.
struct Globals {
  std::vector<Record> records;

  // The indices of all records of a type.
  std::vector<std::size_t> all(std::uint16_t type) const;
  // The index where another record of this type goes: behind those of its type and of the types before it.
  std::size_t place_for(std::uint16_t type) const;
  void insert(std::size_t index, Record record);
  // Puts a record behind those of its type.
  void append(Record record) {
    const std::size_t place = place_for(record.type);
    insert(place, std::move(record));
  }
  // The body of a record with the CONTINUE records behind it; and the way back.
  std::string whole_body(std::size_t index) const;
  void set_whole_body(std::size_t index, std::string_view body) { set_body(index, behind(index), body); }
  // Puts `body` in the place of the records from `index` to `end`.
  void set_body(std::size_t index, std::size_t end, std::string_view body);
  // The index behind a record and its CONTINUE records.
  std::size_t behind(std::size_t index) const;
  std::size_t bytes() const;
};

// The globals at the start of a stream, and where they end in it. Raises WorkbookError with the reason if the workbook
// isn't BIFF8 or can't be changed without harm.
Globals read_globals(std::string_view stream, std::size_t& end);

}  // namespace trvtrout::spreadsheet::biff8
