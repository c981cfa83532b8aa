#include "vtrfile/salvage.h"

#include "vtrfile/salvage_run.h"

// Reading on behind damage:
//
// 1. The file is gone through as a reader goes through it: the header, then sections, each a tag and a record, each
//    record its steps, each list its items. All that is whole is copied to a new file, as it stands.
// 2. What is whole: a section that ends at a known tag or at the end of the file. In one that doesn't, an item, or a
//    run of values between two lists, that can be read and has nothing odd in it: a control character in a text, a
//    flag that is neither. An oddity counts when what follows it doesn't hold either.
// 3. An item that isn't whole, and has lists of its own, is gone into; one that has none is left out.
// 4. Where nothing goes on, every byte from there to the next tag is tried: a tag; the next item of the list, or of one
//    around it; what stands behind the list; a later list of the record, which its descriptor shows. A place is taken
//    when enough speaks for it: the record ends exactly at a known tag from there, or several whole items follow. Of
//    two that are possible at one place the one with more behind it is taken, and of two places the first.
//    An item that can be read a few bytes off is taken where it's least unlike the others of its kind, and not at all
//    where that doesn't decide. Items in front of the break that overlap those behind it were read off, and go.
// 5. What lies between is lost. Of a record that goes on behind it the values in front are kept up to the first that
//    is odd, and those behind as far as they end exactly where the record goes on. All others are empty.
// 6. Where items are missing the numbers of the list are set to what is there.
// 7. A tag can be relied upon when its record goes on for some items or to its end; of the others those that are the
//    only ones of their name. A record without a tag in front, or with a struck one, is taken for the section that fits
//    it exactly.
// 8. Of two sections of one name a whole one is taken before one that isn't, and then the last one.
// 9. Without a version in the header, it's that of the schema that fits.
//
// Each try counts its steps, and there are only so many for each byte of the file. When they are used up, what stands
// up to the next tag is lost.
namespace trvtrout::vtrfile {

std::optional<Salvaged> salvage(const Image& image, std::span<const FileRange> unreadable) {
  return SalvageRun(image, unreadable).run();
}

}  // namespace trvtrout::vtrfile
