#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "component/TarvelVtrOut_InOut.h"
#include "tests/fakes/fake_services.h"
#include "vtrfile/record_writer.h"
#include "vtrfile/sections.h"

// What the targets share.
namespace trvtrout::fuzz {

inline void require(bool holds) {
  if (!holds) std::abort();
}

// Objects that an operation opened and didn't close count as a fault.
inline void require_all_closed(const fakes::Machine& machine) { require(machine.memory.open_objects() == 0); }

inline Boolean read(TarvelVtrOut_InOut& utility, std::u16string path, Boolean is_secondary = False) {
  std::u16string list;
  return utility.ReadVTR(path, list, is_secondary);
}

// The bytes of the record of each section, in the order in which they are written.
inline std::vector<std::string> records_of(const vtrfile::DocumentSlots& document) {
  std::vector<std::string> records;
  vtrfile::for_each_section(
      [&](const auto& section) { vtrfile::RecordWriter(records.emplace_back()).write(*(document.*section.kSlot)); });
  return records;
}

}  // namespace trvtrout::fuzz
