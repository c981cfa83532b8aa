#include <cstddef>
#include <cstdint>

#include "fuzz/documents.h"
#include "tests/recovery_checks.h"

namespace {

using namespace trvtrout;

// Recovers the document that `utility` holds and reads the new file into `again`.
std::string recovered(fakes::Machine& machine, TarvelVtrOut_InOut& utility, TarvelVtrOut_InOut& again) {
  std::u16string path = u"r.vtr", message = u"given";
  machine.memory.files.erase(path);
  fuzz::require(bool(utility.RecoverVTR(path, message)));
  fuzz::require(message.starts_with(u"given\r\n\r\nList of recovered"));
  fuzz::require(bool(fuzz::read(again, path)));
  fuzz::require(fuzz::records_of(again.CurrentSlots()) == fuzz::records_of(utility.CurrentSlots()));
  return machine.memory.files[path];
}

}  // namespace

// Any bytes as a document: what was read of it is recovered, reads to its end and holds the same records; recovering
// that changes nothing any more, and the account of it claims nothing that can't be.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fakes::Machine machine;
  const std::u16string path = u"a.vtr";
  machine.memory.files[path].assign(data, data + size);
  TarvelVtrOut_InOut damaged(machine.services()), first(machine.services()), second(machine.services()),
      third(machine.services());
  fuzz::read(damaged, path);
  std::int32_t count = 0, current = 0, max = 0, used = 0;
  const bool tables_were_walked = damaged.GetLookupInfo(count, current, max, used) == u"OK";

  const auto account = tests::recover_as_command(machine, damaged, u"c.vtr");
  fuzz::require(!account || !tests::fault_of(*account));
  fuzz::read(damaged, path);

  const std::string once = recovered(machine, damaged, first);
  const std::string twice = recovered(machine, first, second);
  // Lookups that fail keep the tables behind them from being walked; the next recovery finds empty ones and goes on.
  if (tables_were_walked) fuzz::require(twice == once);
  fuzz::require(recovered(machine, second, third) == twice);
  fuzz::require_all_closed(machine);
  return 0;
}
