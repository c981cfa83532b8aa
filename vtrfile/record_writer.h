#pragma once

#include <cstddef>
#include <string>

#include "vtrfile/elements.h"

namespace trvtrout::vtrfile {

// Appends records to a run of bytes, in the form that RecordReader takes.
class RecordWriter {
 public:
  // `out` must outlive the writer.
  explicit RecordWriter(std::string& out) noexcept : out_(out) {}

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

  std::string& out_;
};

}  // namespace trvtrout::vtrfile
