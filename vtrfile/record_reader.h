#pragma once

#include <cstdint>
#include <memory_resource>
#include <string_view>

#include "vtrfile/elements.h"
#include "vtrfile/format_version.h"
#include "vtrfile/image.h"
#include "vtrfile/read_error.h"
#include "vtrfile/variant.h"

namespace trvtrout::vtrfile {

// Reads records from an image, one after the other. Every count and length in the image is hostile: whatever the
// bytes are, reading takes time and memory linear in the image's size.
//
// An image that was broken off ends in a ReadError. Elsewhere a value behind the end of the image is empty or 0, and no
// error. A value that the end cuts: a text keeps the bytes that are there, a number or raw run is 0, a variant is
// Empty, an array keeps its announced length with the elements that are there.
class RecordReader {
 public:
  // `image` must outlive the reader and all records read, `version`, the one of the file, the reader.
  explicit RecordReader(const Image& image, std::string_view version = kCurrentFormatVersion.text()) noexcept;

  // Fills `record` from the present position and leaves the position behind it. `memory` gives the arrays their room
  // and must outlive the record. Raises ReadError; the record then holds what was read of it, and the position stays.
  // There is an instance for each record that stands in a file by itself.
  template <class Record>
  void read(Record& record, std::pmr::memory_resource& memory);

  // For the records from here on; the version stands in the file's first one.
  void set_version(std::string_view version) noexcept { version_ = version; }

  std::uint64_t offset() const noexcept { return offset_of(at_); }
  bool at_end() const noexcept { return at_ == end_; }
  // Whether anything that was read so far was cut by the end of the image or stood behind it.
  bool cut() const noexcept { return cut_; }
  // Whether the end of the image cuts the text at the present position.
  bool next_text_is_cut() const noexcept { return !at_end() && 2 + std::size_t{load<std::uint16_t>(at_)} > left(at_); }

 private:
  using Place = const unsigned char*;

  template <class Record>
  Place record(Place at, Record& record);
  template <class Value>
  Place value(Place at, Value& value);
  template <class Element>
  Place array(Place at, Array<Element>& array);
  template <class Element>
  Place elements(Place at, ArrayBlock& block, std::uint32_t room);
  template <std::size_t Slots>
  Place var_run(Place at, VarRun<Slots>& run);

  Place text(Place at, Text& text);
  Place cut_text(Place at, Text& text);
  Place variant(Place at, Var& variant);
  Place filled_variant(Place at, Var& variant);
  // The run of `slots` variants at `at` is filled, cut or broken; sets `run` to where it can be found, even when it
  // raises ReadError.
  Place filled_var_run(Place at, std::size_t slots, Place& run);
  // A copy of the bytes from `at` to `behind`, with `slots` Empty variants behind them; null when there are no bytes.
  Place with_empty(Place at, Place behind, std::size_t slots);
  // Takes what elements behind the end of the file would take there off the allowance; False when it isn't enough.
  bool allow(std::uint64_t missing, std::size_t least_bytes) noexcept;

  // Where reading goes on behind a value that the end of the image cuts. Raises ReadError where the file didn't end.
  Place cut_end();
  std::uint64_t offset_of(Place at) const noexcept { return static_cast<std::uint64_t>(at - begin_); }
  std::size_t left(Place at) const noexcept { return static_cast<std::size_t>(end_ - at); }
  unsigned char* new_bytes(std::size_t size);

  std::string_view version_;
  const Image& image_;
  Place begin_;
  Place end_;
  Place at_;
  Allowance allowance_;
  bool cut_ = false;
  std::pmr::memory_resource* memory_ = nullptr;
};

}  // namespace trvtrout::vtrfile
