#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>

// The element kinds of the format. The type of a record's member is its form in the file. All of them are plain values
// that point into an Image or into the memory of the section that they were read with: copied freely, never freed.
namespace trvtrout::vtrfile {

// The plain number that stands at `at`, in the file's byte order (little-endian) and without alignment.
template <class Number>
Number load(const unsigned char* at) noexcept {
  Number number;
  std::memcpy(&number, at, sizeof number);
  return number;
}

// A text of at most 65,535 bytes in the code page. Empty and null are the same.
class Text {
 public:
  static constexpr std::size_t kLeastBytes = 2;

  constexpr Text() noexcept = default;
  // `at`: a 16-bit length, then as many bytes; they must stay where they are.
  explicit constexpr Text(const unsigned char* at) noexcept : at_(at) {}

  bool empty() const noexcept { return at_ == nullptr; }
  std::string_view bytes() const noexcept {
    return at_ ? std::string_view(reinterpret_cast<const char*>(at_) + 2, load<std::uint16_t>(at_))
               : std::string_view();
  }
  friend bool operator==(Text a, Text b) noexcept { return a.at_ == b.at_ || a.bytes() == b.bytes(); }

 private:
  const unsigned char* at_ = nullptr;
};

// A flag: any value but 0 is True, and True is written as -1.
struct Flag {
  static constexpr std::size_t kLeastBytes = 2;
  std::int16_t value;
  explicit operator bool() const noexcept { return value != 0; }
  friend bool operator==(Flag a, Flag b) noexcept { return bool(a) == bool(b); }
};

// Plain values of which only the total width is known.
template <std::size_t Width>
struct Raw {
  static constexpr std::size_t kLeastBytes = Width;
  std::array<unsigned char, Width> bytes;
  bool operator==(const Raw&) const = default;
};

// A variant; null is Empty. What it points to was checked when it was read (variant.h tells how to look into it).
class Var {
 public:
  static constexpr std::size_t kLeastBytes = 2;

  constexpr Var() noexcept = default;
  // `at`: the 16-bit type tag, then the body.
  explicit constexpr Var(const unsigned char* at) noexcept : at_(at) {}
  bool empty() const noexcept { return at_ == nullptr; }
  const unsigned char* at() const noexcept { return at_; }

 private:
  const unsigned char* at_ = nullptr;
};

// A run of `Slots` variants one after the other, null when all of them are Empty: nearly every run is.
template <std::size_t Slots>
class VarRun {
 public:
  static constexpr std::size_t kSlots = Slots;
  static constexpr std::size_t kLeastBytes = 2 * Slots;

  constexpr VarRun() noexcept = default;
  explicit constexpr VarRun(const unsigned char* at) noexcept : at_(at) {}
  bool empty() const noexcept { return at_ == nullptr; }
  const unsigned char* at() const noexcept { return at_; }

 private:
  const unsigned char* at_ = nullptr;
};

// What an access outside an array's bounds raises, as the platform's arrays do.
class SubscriptOutOfRange : public std::out_of_range {
 public:
  SubscriptOutOfRange()
      : std::out_of_range(
            "a list is shorter than its count says, or too long to be walked; a recount of the lists shows which") {}
};

// What an array was made of, whatever its elements are.
struct ArrayBlock {
  std::uint32_t count;   // elements that the array has
  std::int32_t lower;    // index of the first one
  std::uint32_t stored;  // elements that the file held; those behind them are empty
  const void* elements;
  // Of records that were read: where in the image each stored element begins, and where the last one ends; null there
  // when it broke off, and null for all other arrays.
  const unsigned char* const* places = nullptr;
};

// A one-dimensional array with the lower bound that the file gave it; null when unallocated. Elements that a file
// announces behind its end are there and empty, and take no memory.
class AnyArray {
 public:
  static constexpr std::size_t kLeastBytes = 2;

  constexpr AnyArray() noexcept = default;
  explicit constexpr AnyArray(const ArrayBlock* block) noexcept : block_(block) {}

  bool allocated() const noexcept { return block_ != nullptr; }
  std::int64_t size() const noexcept { return block_ ? block_->count : 0; }
  std::int64_t lower() const noexcept { return block_ ? block_->lower : 0; }
  std::int64_t upper() const noexcept { return lower() + size() - 1; }
  // What the array was made of; only for one that is allocated.
  const ArrayBlock& block() const noexcept { return *block_; }

  bool contains(std::int64_t index) const noexcept { return index >= lower() && index <= upper(); }

 protected:
  const ArrayBlock* block_ = nullptr;
};

template <class Element>
class Array : public AnyArray {
 public:
  using Block = ArrayBlock;
  using AnyArray::AnyArray;

  // The element with this index, counted from lower(). Raises SubscriptOutOfRange.
  const Element& at(std::int64_t index) const {
    if (!contains(index)) throw SubscriptOutOfRange();
    return position(static_cast<std::uint32_t>(index - lower()));
  }
  // The element at this place, counted from 0 and below size().
  const Element& position(std::uint32_t place) const noexcept {
    static constexpr Element kEmpty{};
    return place < block_->stored ? static_cast<const Element*>(block_->elements)[place] : kEmpty;
  }
};

}  // namespace trvtrout::vtrfile
