#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "host/json.h"
#include "host/recovery_account.h"
#include "services/host_services.h"
#include "vtrfile/salvage.h"

namespace trvtrout::host {

// How many of the file's bytes are explained, for people.
std::string share_text(const vtrfile::Salvaged& salvaged);

// Tenths of a percent, rounded down: only a file of which nothing is missing has all of it.
std::string percent(std::uint64_t part, std::uint64_t whole);

// Enters in the account what the lists have lost, of which the document itself doesn't tell any more.
void enter_losses(RecoveryAccount& account, const vtrfile::Salvaged& salvaged);

// Where a section or a list was found, what is missing between which neighbours, and which bytes nothing can be told
// of, for people. Keys are decoded by `locale`.
void print_salvage(std::ostream& out, const vtrfile::Salvaged& salvaged, Locale& locale);

Json salvage_json(const vtrfile::Salvaged& salvaged, Locale& locale);

// Writes the unexplained bytes of `file` into the folder, each range to a file of its own whose name tells it, with
// zeros for what can't be read; their paths. An existing file is never replaced. Raises ServiceError.
std::vector<std::string> write_unexplained(const std::string& file, const std::string& folder,
                                           const vtrfile::Salvaged& salvaged);

}  // namespace trvtrout::host
