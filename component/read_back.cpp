#include "component/read_back.h"

#include <algorithm>
#include <memory>
#include <span>

#include "component/TarvelVtrOut_InOut.h"
#include "vtrfile/record_writer.h"
#include "vtrfile/sections.h"

namespace trvtrout {
namespace {

using vtrfile::PartRead;

// The bytes of a file in their order, against what should stand there.
class WrittenBytes {
 public:
  explicit WrittenBytes(std::unique_ptr<BinaryFile> file) : file_(std::move(file)) {}

  // Whether `record`, and nothing else, stands where this part was read.
  template <class Record>
  bool hold(const PartRead& part, const Record& record) {
    bool same = skip_to(part.record);
    const auto compare = [&](std::string& expected) {
      same = same && next(expected.size()) == expected;
      expected.clear();
    };
    std::string piece;
    vtrfile::RecordWriter(piece, compare).write(record);
    compare(piece);
    return same && at_ == part.end;
  }

 private:
  bool skip_to(std::uint64_t offset) {
    if (at_ <= offset) next(static_cast<std::size_t>(offset - at_));
    return at_ == offset;
  }
  const std::string& next(std::size_t size) {
    piece_.resize(size);
    piece_.resize(file_->Read({reinterpret_cast<unsigned char*>(piece_.data()), size}));
    at_ += piece_.size();
    return piece_;
  }

  std::unique_ptr<BinaryFile> file_;
  std::string piece_;
  std::uint64_t at_ = 0;
};

// What a whole read of the file met, and nothing when it broke off.
std::optional<vtrfile::FileRead> read_whole(const HostServices& services, std::u16string& path) {
  TarvelVtrOut_InOut reader(services);
  std::u16string list;
  Boolean primary = False;
  if (!reader.ReadVTR(path, list, primary)) return {};
  return reader.LastRead();
}

// Whether the file holds these bytes and no other.
bool holds(BinaryFile& file, const std::vector<std::string>& pieces) {
  constexpr std::size_t kRoom = 65536;
  std::string room(kRoom, '\0');
  const auto read = [&](std::size_t size) {
    return file.Read({reinterpret_cast<unsigned char*>(room.data()), std::min(size, kRoom)});
  };
  for (const std::string& piece : pieces) {
    for (std::size_t at = 0; at < piece.size();) {
      const std::size_t count = read(piece.size() - at);
      if (count == 0 || piece.compare(at, count, room, 0, count) != 0) return false;
      at += count;
    }
  }
  return read(1) == 0;
}

// Whether the file reads to its end, each part where its piece was written.
bool reads_as_written(const HostServices& services, std::u16string& path, const std::vector<std::string>& pieces) {
  const auto read = read_whole(services, path);
  if (!read || !read->gaps.empty()) return false;
  const auto& parts = read->parts;
  if (parts.size() != pieces.size() / 2 + 1) return false;
  std::uint64_t end = pieces.front().size();
  for (std::size_t part = 0; part < parts.size(); ++part) {
    if (part > 0) end += pieces[2 * part - 1].size();
    if (part > 0 && part + 1 < parts.size()) end += pieces[2 * part].size();
    if (!parts[part].whole || parts[part].end != end) return false;
  }
  return true;
}

}  // namespace

std::optional<std::vector<std::uint64_t>> read_back(const HostServices& services, std::u16string path,
                                                    const vtrfile::DocumentSlots& document) {
  constexpr std::size_t kParts = 1 + std::tuple_size_v<decltype(vtrfile::kSections)> + 1;  // header and end tag
  const auto read = read_whole(services, path);
  if (!read || read->parts.size() != kParts || !read->gaps.empty()) return {};
  WrittenBytes written(services.files.OpenBinary(path));
  std::vector<std::uint64_t> sizes;
  auto part = read->parts.begin();
  bool same = part->whole && written.hold(*part, *document.Header);
  vtrfile::for_each_section([&](const auto& section) {
    ++part;
    same = same && part->name == section.tag && part->whole && written.hold(*part, *(document.*section.kSlot));
    sizes.push_back(part->end - part->record);
  });
  return same ? std::optional(sizes) : std::nullopt;
}

bool reads_back(const HostServices& services, std::u16string path, const std::vector<std::string>& pieces) {
  return holds(*services.files.OpenBinary(path), pieces) && reads_as_written(services, path, pieces);
}

}  // namespace trvtrout
