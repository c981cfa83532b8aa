#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they stand in the file");

[[noreturn]] inline void raise_damaged(const std::string& what) {
  throw WorkbookError("it's damaged: " + what + "; open it in a spreadsheet program, save it and try again");
}

// The plain number at `at`. Raises WorkbookError where it doesn't lie in `bytes` whole.
template <class Number>
Number get(std::string_view bytes, std::size_t at) {
  if (at > bytes.size() || bytes.size() - at < sizeof(Number)) raise_damaged("a structure in it ends early");
  Number number;
  std::memcpy(&number, bytes.data() + at, sizeof number);
  return number;
}

// Overwrites the plain number at `at`, with the check of get.
template <class Number>
void put(std::string& bytes, std::size_t at, Number number) {
  get<Number>(bytes, at);
  std::memcpy(bytes.data() + at, &number, sizeof number);
}

// Puts plain numbers one after the other.
class ByteWriter {
 public:
  ByteWriter() = default;
  explicit ByteWriter(std::string begin) : bytes_(std::move(begin)) {}

  ByteWriter& u8(std::uint8_t value) { return number(value); }
  ByteWriter& u16(std::uint16_t value) { return number(value); }
  ByteWriter& u32(std::uint32_t value) { return number(value); }
  ByteWriter& f64(double value) { return number(value); }
  ByteWriter& zeros(std::size_t count) {
    bytes_.append(count, '\0');
    return *this;
  }
  ByteWriter& raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
  }
  const std::string& bytes() const { return bytes_; }
  std::string take() { return std::move(bytes_); }

 private:
  template <class Number>
  ByteWriter& number(Number value) {
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes_.append(raw, sizeof value);
    return *this;
  }

  std::string bytes_;
};

}  // namespace trvtrout::spreadsheet
