#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/documents.h"
#include "vtrfile/lists.h"
#include "vtrfile/reader.h"
#include "vtrfile/salvage.h"

namespace {

using namespace trvtrout;
using vtrfile::Salvaged;

// Everything in the new file that was copied stands so in the old one, and nothing was copied twice.
void require_pieces(const Salvaged& salvaged, const vtrfile::Image& image) {
  auto pieces = salvaged.pieces;
  for (const vtrfile::SalvagedPiece& piece : pieces) {
    fuzz::require(piece.from.begin < piece.from.end && piece.from.end <= image.size());
    fuzz::require(piece.at + piece.from.size() <= salvaged.image->size());
    fuzz::require(std::equal(image.begin() + piece.from.begin, image.begin() + piece.from.end,
                             salvaged.image->begin() + piece.at) ||
                  !salvaged.sections.empty());
  }
  std::ranges::sort(pieces, {}, [](const vtrfile::SalvagedPiece& piece) { return piece.from.begin; });
  for (std::size_t next = 1; next < pieces.size(); ++next) {
    fuzz::require(pieces[next - 1].from.end <= pieces[next].from.begin);
  }
}

struct Document {
  vtrfile::DocumentSlots current;
  vtrfile::FileRead met;
  bool complete = false;

  void read(std::shared_ptr<const vtrfile::Image> image) {
    vtrfile::GroupSlots group;
    vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> schema_old;
    vtrfile::DocumentReader reader(current, group, schema_old);
    try {
      complete = reader.read(std::move(image));
    } catch (const vtrfile::ReadError&) {
    }
    met = reader.take_account();
  }
};

}  // namespace

// Any bytes as a damaged document: what is saved of them reads to its end, and holds nothing but bytes of the file. Of
// one that isn't damaged everything is saved.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto image = vtrfile::image_of({data, size});
  const auto salvaged = vtrfile::salvage(*image);
  Document before;
  before.read(image);
  // A list whose bound was struck holds together no more, though the file reads to its end.
  const bool sound = before.complete && before.met.gaps.empty() &&
                     std::ranges::all_of(vtrfile::document_lists(), [&](const vtrfile::DocumentList& list) {
                       return list.recount(before.current).ok;
                     });
  fuzz::require(salvaged || !sound);
  if (!salvaged) return 0;
  require_pieces(*salvaged, *image);
  Document after;
  after.read(salvaged->image);
  fuzz::require(after.complete && after.met.gaps.empty());
  if (sound) fuzz::require(fuzz::records_of(before.current) == fuzz::records_of(after.current));
  return 0;
}
