#include "vtrfile/record_reader.h"

#include <algorithm>

namespace trvtrout::vtrfile {
namespace {

// A cut file may announce more than it holds, and its missing elements are delivered empty; but what is announced must
// stay in proportion to the file, or a few bytes would make a rewritten file of gigabytes.
constexpr Allowance kAllowance = Allowance{4} << 20;
constexpr Allowance kAllowancePerByte = 2;

}  // namespace

RecordReader::RecordReader(const Image& image, std::string_view version) noexcept
    : version_(version),
      image_(image),
      begin_(image.begin()),
      end_(image.end()),
      at_(image.begin()),
      allowance_(kAllowance + kAllowancePerByte * image.size()) {}

RecordReader::Place RecordReader::cut_end() {
  cut_ = true;
  if (!image_.broken_off().empty()) throw ReadError(offset_of(end_), image_.broken_off());
  return end_;
}

unsigned char* RecordReader::new_bytes(std::size_t size) {
  return static_cast<unsigned char*>(memory_->allocate(size, 1));
}

RecordReader::Place RecordReader::cut_text(Place at, Text& text) {
  text = Text();
  const std::size_t there = left(at);
  if (there > 2) {
    unsigned char* const copy = new_bytes(there);
    const auto length = static_cast<std::uint16_t>(there - 2);
    std::memcpy(copy, &length, 2);
    std::copy(at + 2, end_, copy + 2);
    text = Text(copy);
  }
  return cut_end();
}

RecordReader::Place RecordReader::filled_variant(Place at, Var& variant) {
  const Place behind = VariantWalk(begin_, end_, allowance_).skip(at);
  variant = behind ? Var(at) : Var();
  return behind ? behind : cut_end();
}

RecordReader::Place RecordReader::with_empty(Place at, Place behind, std::size_t slots) {
  if (at == behind) return nullptr;
  unsigned char* const copy = new_bytes(static_cast<std::size_t>(behind - at) + 2 * slots);
  std::fill_n(std::copy(at, behind, copy), 2 * slots, static_cast<unsigned char>(0));
  return copy;
}

RecordReader::Place RecordReader::filled_var_run(Place at, std::size_t slots, Place& run) {
  Place behind = at;
  for (std::size_t slot = 0; slot < slots; ++slot) {
    Var variant;
    try {
      const Place next = filled_variant(behind, variant);
      if (variant.empty()) {
        // The end of the file cuts this slot: it and those behind it are Empty.
        run = with_empty(at, behind, slots - slot);
        return end_;
      }
      behind = next;
    } catch (ReadError& error) {
      run = with_empty(at, behind, slots - slot);
      error.enter(slot + 1);
      throw;
    }
  }
  run = at;
  return behind;
}

bool RecordReader::allow(std::uint64_t missing, std::size_t least_bytes) noexcept {
  if (missing * least_bytes > allowance_) return false;
  allowance_ -= missing * least_bytes;
  return true;
}

}  // namespace trvtrout::vtrfile
