#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"
#include "vtrfile/document.h"

namespace trvtrout::host {

// What became of one part of a file.
enum class Fate {
  kWhole,
  kAbsent,      // the file was read to its end and doesn't have it
  kNotFound,    // the same, but there were bytes that nothing is known about
  kPartlyRead,  // the end of the file or damage broke it off
  kEmptied,     // a list of it doesn't hold together
  kUnsound,     // a list of it doesn't hold together, but stays as it was read
  kReplaced,    // the file holds it more than once, and the last one counts
  kLeftBehind,  // of the old format, with content that has no place in the current one
  kNotCarried,  // of the old format, and broken off: nothing of it came into the document
  kFewer,       // a list of it has fewer records than it announces
  kNotReached,
};

struct FateText {
  const char* title;  // for people
  const char* key;    // for programs
};
FateText text_of(Fate fate);

// Whether a list holds together, and what a recovery did with one that doesn't.
enum class ListTest { kPassed, kEmptied, kKept };

// The records of one list.
struct KeptList {
  const char* title;
  const char* key;
  std::optional<std::int64_t> announced;  // no value where that can't be told
  std::int64_t kept = 0;                  // of those announced
  std::int64_t surplus = 0;               // kept beyond those; of a broken list perhaps what stood behind it
  std::int64_t empty = 0;                 // announced behind the end of the file, and empty in the new one
  ListTest test = ListTest::kPassed;
};

struct KeptPart {
  std::string_view name;  // "Header", or the tag of a section
  Fate fate = Fate::kAbsent;
  std::uint64_t read = 0;      // bytes that were read of it
  std::uint64_t kept = 0;      // of these, the bytes of what is in the new file; of a broken part at most that many
  bool tag_texts_kept = true;  // false: all tags of the new file have those of the last one
  std::vector<KeptList> lists;
};

struct RecoveryAccount {
  std::vector<KeptPart> parts;  // the header, then the sections
  std::uint64_t bytes = 0;      // of the whole file
  std::uint64_t kept = 0;
  std::uint64_t behind_end = 0;  // bytes behind the end tag, which are no part of the document
  bool kept_at_most = false;     // `kept` counts bytes of broken parts
  bool nothing_lost = false;
};

// `before`, `after`: the document as it was read from the file that gave `read`, and as it was written. `written`:
// bytes of each section's record in the new file.
RecoveryAccount account_for_recovery(const vtrfile::DocumentSlots& before, const vtrfile::DocumentSlots& after,
                                     const vtrfile::FileRead& read, const std::vector<std::uint64_t>& written);

}  // namespace trvtrout::host
