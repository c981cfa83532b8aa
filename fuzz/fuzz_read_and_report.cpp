#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"

// Any bytes as a document: read, every accessor asked, every report written. Nothing may break, and the reports come
// out whole or say that they didn't.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trvtrout;
  using Operation = Boolean (TarvelVtrOut_InOut::*)(std::u16string&, std::u16string&, Boolean&);
  static constexpr Operation kReports[] = {
      &TarvelVtrOut_InOut::ASCII_Output_Product, &TarvelVtrOut_InOut::ASCII_Output_Table,
      &TarvelVtrOut_InOut::ASCII_Output_Tree,    &TarvelVtrOut_InOut::ASCII_Output_Field,
      &TarvelVtrOut_InOut::ASCII_Output_Lookup,  &TarvelVtrOut_InOut::ASCII_Output_CtrlTag,
      &TarvelVtrOut_InOut::ASCII_Output_Lang,    &TarvelVtrOut_InOut::ASCII_Output_DSend,
  };
  fakes::Machine machine;
  std::u16string path = u"a.vtr", list, report;
  machine.memory.files[path].assign(data, data + size);
  TarvelVtrOut_InOut utility(machine.services());
  Boolean no = False;
  utility.ReadVTR(path, list, no);
  for (const Operation operation : kReports) {
    if ((utility.*operation)(path, report, no) && !machine.memory.files[report].starts_with("Detailed")) std::abort();
  }
  if (machine.files.open_objects() != 0 || machine.memory.open_objects() != 0) std::abort();
  return 0;
}
