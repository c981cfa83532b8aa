#include "vtrfile/image.h"

#include <algorithm>
#include <utility>

namespace trvtrout::vtrfile {

Image::Image(std::size_t size)
    : bytes_(std::make_unique_for_overwrite<unsigned char[]>(size + kSlack)), size_(size), file_size_(size) {
  std::fill_n(bytes_.get() + size, kSlack, static_cast<unsigned char>(0));
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
