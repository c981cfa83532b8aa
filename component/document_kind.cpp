#include "component/document_kind.h"

#include <algorithm>
#include <memory_resource>
#include <string_view>

#include "vtrfile/image.h"
#include "vtrfile/record_reader.h"
#include "vtrfile/records/header.h"

namespace trvtrout {
namespace {

bool is_version(std::string_view text) {
  constexpr std::string_view kForm = "00.00.00";
  return std::ranges::equal(text, kForm,
                            [](char c, char form) { return form == '.' ? c == '.' : c >= '0' && c <= '9'; });
}

// The header as far as the bytes go.
vtrfile::HEADER_STRUCT read_header(const vtrfile::Image& image, std::pmr::memory_resource& memory) {
  vtrfile::HEADER_STRUCT header{};
  try {
    vtrfile::RecordReader(image).read(header, memory);
  } catch (const vtrfile::ReadError&) {
    // The spare slots behind the version may be damaged.
  }
  return header;
}

}  // namespace

bool begins_as_document(Files& files, const std::u16string& path) {
  // Four texts of at most 64 KiB each; those of a file that people keep take some hundred bytes.
  for (const std::size_t most : {std::size_t{4096}, std::size_t{4} * 65538}) {
    const auto file = files.OpenBinary(path);
    vtrfile::Image image(std::min<std::uint64_t>(most, file->Size()));
    image.shorten(file->Read(image.writable()));
    file->Close();
    std::pmr::monotonic_buffer_resource memory;
    if (is_version(read_header(image, memory).Version.bytes())) return true;
    if (image.size() < most) return false;
  }
  return false;
}

}  // namespace trvtrout
