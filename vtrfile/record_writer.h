#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "vtrfile/elements.h"
#include "vtrfile/format_version.h"

namespace trvtrout::vtrfile {

// Appends records to a run of bytes, in the form that RecordReader takes.
class RecordWriter {
 public:
  // Takes the bytes out of the run that was written so far; what it raises comes out of write().
  using Drain = std::function<void(std::string&)>;

  // `out` must outlive the writer. `drain`, if given, is called when some 64 KiB have come together, so that a record
  // that is large, or that announces far more than its file held, isn't in memory as a whole.
  // `version` is the one of the file.
  explicit RecordWriter(std::string& out, Drain drain = {},
                        std::string_view version = kCurrentFormatVersion.text()) noexcept
      : out_(out), drain_(std::move(drain)), version_(version) {}

  // There is an instance for each record that stands in a file by itself.
  template <class Record>
  void write(const Record& record);

 private:
  template <class Value>
  void value(const Value& value);
  template <class Element>
  void array(const Array<Element>& array);
  template <class Value>
  void plain(Value value) {
    out_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  // `count` variants from `at` on; null: all of them Empty.
  void variants(const unsigned char* at, std::size_t count);

  static constexpr std::size_t kDrainedAt = 65536;

  std::string& out_;
  Drain drain_;
  std::string_view version_;
};

}  // namespace trvtrout::vtrfile
