#pragma once

#include <algorithm>
#include <optional>
#include <string>

#include "component/read_back.h"
#include "host/recovery_account.h"
#include "tests/fakes/fake_services.h"

namespace trvtrout::tests {

// Recovers the document that `utility` read to `path`, as the command does. Nothing when it refuses or fails.
inline std::optional<host::RecoveryAccount> recover_as_command(fakes::Machine& machine, TarvelVtrOut_InOut& utility,
                                                               std::u16string path) {
  const vtrfile::FileRead& read = utility.LastRead();
  const bool unsupported = !utility.LastDamage() && read.parts.back().name != "EOF";
  if (unsupported || !read.parts.front().whole) return {};
  const vtrfile::DocumentSlots before = utility.CurrentSlots();
  std::u16string message;
  if (!utility.RecoverVTR(path, message)) return {};
  const auto sizes = read_back(machine.services(), path, utility.CurrentSlots());
  if (!sizes) return {};
  return host::account_for_recovery(before, utility.CurrentSlots(), read, *sizes);
}

// What an account must never say, whatever the file; null when it says nothing of the kind.
inline const char* fault_of(const host::RecoveryAccount& account) {
  bool whole = true;
  for (const host::KeptPart& part : account.parts) {
    const bool is_whole = part.fate == host::Fate::kWhole;
    whole = whole && part.tag_texts_kept && (is_whole || part.fate == host::Fate::kAbsent);
    if (part.kept > part.read) return "more bytes kept of a part than read";
    if (is_whole && part.tag_texts_kept && part.kept != part.read) return "a whole part isn't kept as a whole";
    for (const host::KeptList& list : part.lists) {
      if (list.kept < 0 || list.surplus < 0 || list.empty < 0) return "a count below 0";
      if (list.announced && list.kept > *list.announced) return "more records kept than announced";
      if (is_whole && list.announced != list.kept)
        return "a whole part has a list with other than the announced number";
    }
  }
  if (account.kept + account.behind_end > account.bytes) return "more bytes kept than there are";
  if (account.nothing_lost != (whole && account.kept + account.behind_end == account.bytes)) {
    return "nothing lost, but not all of the file is accounted for";
  }
  return nullptr;
}

}  // namespace trvtrout::tests
