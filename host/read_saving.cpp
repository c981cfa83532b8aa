#include "host/read_saving.h"

#include "component/document_kind.h"
#include "host/salvage_account.h"
#include "platform/files/path.h"
#include "services/guard.h"

namespace trvtrout::host {
namespace {

bool salvage(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary) {
  std::u16string path = platform::class_path(file);
  machine.speak_of(file);
  Progress progress;
  progress.show("Reading on behind the damage of " + file);
  return bool(utility.SalvageVTR(path, is_secondary));
}

}  // namespace

ExitStatus read_saving(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool wants_salvage,
                       std::u16string& structure_list, Boolean is_secondary) {
  if (!wants_salvage) return read(machine, utility, file, structure_list, is_secondary);
  const bool has_header =
      guarded([&] { return begins_as_document(machine.services().files, platform::class_path(file)); },
              [](const Failure&) { return true; });
  ExitStatus status = kTrouble;
  if (has_header) {
    status = read(machine, utility, file, structure_list, is_secondary);
    // A version that isn't supported is no damage; of all other troubles the class has made its lists.
    if (status == kFine || (status == kTrouble && structure_list.empty())) return status;
  }
  const bool saved = salvage(machine, utility, file, is_secondary);
  // Without a header and without a single section nothing says that it's a VTR file at all.
  if (saved && (has_header || !utility.LastSalvage()->sections.empty())) {
    complain(file + ": read on behind the damage; " + share_text(*utility.LastSalvage()));
    return kRemarkable;
  }
  if (!has_header) return read(machine, utility, file, structure_list, is_secondary);
  if (status == kRemarkable) complain(file + ": nothing more can be saved: " + utility.LastFailure());
  return status;
}

}  // namespace trvtrout::host
