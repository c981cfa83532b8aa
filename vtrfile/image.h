#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace trvtrout::vtrfile {

// The bytes of one file (or of a few records that the system made itself), held in memory once, whole and unchanged.
// Records point into it, so whoever holds records holds the image with them. Behind the last byte stand kSlack zero
// bytes, so that a plain number may be loaded at any offset up to the end.
class Image {
 public:
  static constexpr std::size_t kSlack = 64;

  // An image of `size` bytes that the caller fills through writable() before anybody reads it. Raises bad_alloc where
  // the machine has no room for that many.
  explicit Image(std::uint64_t size);

  std::span<unsigned char> writable() noexcept { return {bytes_.get(), size_}; }
  // Keeps the first `size` bytes, where the file turned out to be shorter or couldn't be read further, for which
  // `broken_off` gives the reason; before anybody reads the image.
  void shorten(std::size_t size, std::string broken_off = {}) noexcept;
  // Why the file couldn't be read to its end, for people; empty when it was.
  const std::string& broken_off() const noexcept { return broken_off_; }
  // Bytes of the file, those that couldn't be read included.
  std::size_t file_size() const noexcept { return broken_off_.empty() ? size_ : file_size_; }
  const unsigned char* begin() const noexcept { return bytes_.get(); }
  const unsigned char* end() const noexcept { return bytes_.get() + size_; }
  std::size_t size() const noexcept { return size_; }

 private:
  std::unique_ptr<unsigned char[]> bytes_;
  std::size_t size_;
  std::size_t file_size_;
  std::string broken_off_;
};

// An image that holds a copy of `bytes`.
std::shared_ptr<const Image> image_of(std::span<const unsigned char> bytes);

}  // namespace trvtrout::vtrfile
