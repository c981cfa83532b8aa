#include "vtrfile/image.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace trvtrout::vtrfile {
namespace {

// A file can be larger than the addresses of a program of 32 bits reach.
std::size_t addressable(std::uint64_t size) {
  if (size > std::numeric_limits<std::size_t>::max() - Image::kSlack) throw std::bad_alloc();
  return static_cast<std::size_t>(size);
}

}  // namespace

Image::Image(std::uint64_t size) : size_(addressable(size)), file_size_(size_) {
  bytes_ = std::make_unique_for_overwrite<unsigned char[]>(size_ + kSlack);
  std::fill_n(bytes_.get() + size_, kSlack, static_cast<unsigned char>(0));
}

void Image::shorten(std::size_t size, std::string broken_off) noexcept {
  broken_off_ = std::move(broken_off);
  size_ = size;
  std::fill_n(bytes_.get() + size, kSlack, static_cast<unsigned char>(0));
}

std::shared_ptr<const Image> image_of(std::span<const unsigned char> bytes) {
  auto image = std::make_shared<Image>(bytes.size());
  std::ranges::copy(bytes, image->writable().begin());
  return image;
}

}  // namespace trvtrout::vtrfile
