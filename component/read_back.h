#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "services/host_services.h"
#include "vtrfile/document.h"

namespace trvtrout {

// Reads the file that `document` was written to, and holds it to the document piece by piece: each section must be read
// where its record stands, byte for byte. The bytes of each section's record, or nothing when it isn't the same.
std::optional<std::vector<std::uint64_t>> read_back(const HostServices& services, std::u16string path,
                                                    const vtrfile::DocumentSlots& document);

// Whether the file holds these pieces and nothing else (the header, then the tag and the record of each section, then
// the end tag), and reads to its end with each part where its piece stands.
bool reads_back(const HostServices& services, std::u16string path, const std::vector<std::string>& pieces);

}  // namespace trvtrout
