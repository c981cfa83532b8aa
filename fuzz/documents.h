#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
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

// The document and the one behind the mark; without a mark the document twice.
inline std::pair<std::string, std::string> two_documents(const std::uint8_t* data, std::size_t size) {
  constexpr std::string_view kMark = "#second#";
  const std::string_view both(reinterpret_cast<const char*>(data), size);
  const std::size_t mark = both.find(kMark);
  const bool pair = mark != std::string_view::npos;
  return {std::string(both.substr(0, mark)), std::string(pair ? both.substr(mark + kMark.size()) : both)};
}

// The bytes of the record of each section, in the order in which they are written.
inline std::vector<std::string> records_of(const vtrfile::DocumentSlots& document) {
  std::vector<std::string> records;
  vtrfile::for_each_section(
      [&](const auto& section) { vtrfile::RecordWriter(records.emplace_back()).write(*(document.*section.kSlot)); });
  return records;
}

}  // namespace trvtrout::fuzz
