#include <algorithm>
#include <utility>

#include "component/store.h"
#include "vtrfile/salvage.h"
#include "vtrfile/sections.h"

namespace trvtrout {
namespace {

using namespace vtrfile;

constexpr std::size_t kBlock = 65536;
// What is given up around a byte that can't be read: the least that a machine reads at once.
constexpr std::size_t kLeastBlock = 4096;

struct ReadableImage {
  std::shared_ptr<Image> image;
  std::vector<FileRange> unreadable;
};

// Reads a file whose medium may be bad: what can't be read at the second try is zeros in the image.
class PatientReader {
 public:
  explicit PatientReader(BinaryFile& file) : file_(file), made_{std::make_shared<Image>(file.Size()), {}} {}

  // Raises ServiceError when nothing at all can be read.
  ReadableImage read() {
    const std::span whole = made_.image->writable();
    while (at_ < whole.size()) {
      try {
        const std::size_t count = file_.Read(whole.subspan(at_, std::min(kBlock, whole.size() - at_)));
        if (count == 0) break;
        at_ += count;
      } catch (const ServiceError&) {
        once_more(whole);
      }
    }
    if (at_ < whole.size()) made_.image->shorten(at_);
    if (made_.unreadable.size() == 1 && made_.unreadable[0].size() == whole.size()) {
      throw ServiceError(ErrorNumber::kDeviceError, "no byte of the file can be read");
    }
    return std::move(made_);
  }

 private:
  // Tries a small block, and passes over it when that fails too; over all that is left when the file can't be read any
  // further.
  void once_more(std::span<unsigned char> whole) {
    const std::size_t size = std::min(kLeastBlock - at_ % kLeastBlock, whole.size() - at_);
    if (!file_.SkipTo(at_)) return pass_over(whole, whole.size() - at_);
    try {
      const std::size_t count = file_.Read(whole.subspan(at_, size));
      at_ += count;
      if (count > 0) return;
    } catch (const ServiceError&) {
    }
    pass_over(whole, size);
    if (!file_.SkipTo(at_)) pass_over(whole, whole.size() - at_);
  }

  void pass_over(std::span<unsigned char> whole, std::size_t size) {
    std::ranges::fill(whole.subspan(at_, size), static_cast<unsigned char>(0));
    auto& ranges = made_.unreadable;
    if (!ranges.empty() && ranges.back().end == at_) {
      ranges.back().end = at_ + size;
    } else if (size > 0) {
      ranges.push_back({at_, at_ + size});
    }
    at_ += size;
  }

  BinaryFile& file_;
  ReadableImage made_;
  std::size_t at_ = 0;
};

// The account of a read, of the file that was salvaged in place of the one that was made of it.
FileRead read_of(FileRead of_new, const Salvaged& salvaged) {
  auto& parts = of_new.parts;
  of_new.bytes = salvaged.bytes;
  for (const FileRange& range : salvaged.unexplained) {
    of_new.gaps.push_back({range.begin, range.end, "nothing that could be told"});
  }
  parts.front().whole = salvaged.header_whole;
  parts.front().end = salvaged.header_end;
  auto part = parts.begin() + 1;
  for (const SalvagedSection& section : salvaged.sections) {
    if (!section.chosen) continue;
    const std::uint64_t tag = section.tag_struck ? 0 : part->content - part->begin;
    part->begin = section.bytes.begin;
    part->content = part->record = section.bytes.begin + tag;
    part->end = section.bytes.end;
    part->whole = section.whole;
    ++part;
  }
  if (!salvaged.end_found) {
    parts.pop_back();
  } else {
    const std::uint64_t tag = parts.back().end - parts.back().begin;
    parts.back().end = salvaged.bytes - salvaged.behind_end;
    parts.back().begin = parts.back().content = parts.back().end - tag;
  }
  return of_new;
}

}  // namespace

Boolean TarvelVtrOut_InOut::SalvageVTR(std::u16string& Fname, Boolean& IsSecondary) {
  store_->last_salvage.reset();
  if (Fname.empty()) return store_->fail({.what = "no file was named"});
  std::unique_ptr<BinaryFile> file;
  return guarded(
      [&] {
        file = store_->services.files.OpenBinary(Fname);
        store_->services.message_loop.DoEvents();
        const ReadableImage readable = PatientReader(*file).read();
        close_done(file);
        auto salvaged = salvage(*readable.image, readable.unreadable);
        if (!salvaged) return store_->fail({.what = "no section of a VTR file can be found in it"});

        DocumentSlots found;
        GroupSlots copies;
        Slot<SCHEMA_STRUCT_OLD1> schema_old;
        DocumentReader reader(found, copies, schema_old);
        if (!reader.read(salvaged->image)) return store_->fail({.what = "the format version can't be told"});
        store_->current = found;
        (IsSecondary ? store_->secondary : store_->primary) = copies;
        store_->last_read = read_of(reader.take_account(), *salvaged);
        store_->last_salvage = std::move(salvaged);
        return True;
      },
      [&](const Failure& failure) {
        close_failed(file);
        return store_->fail(failure);
      });
}

}  // namespace trvtrout
