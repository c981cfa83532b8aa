#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/strikes.h"
#include "vtrfile/salvage.h"

// What of a document survives damage.
namespace trvtrout::tests {

// The used items of all lists of a document by what they hold themselves, without the lists within them: the list's
// path and the bytes. Where each of them stands in the file.
struct Place {
  std::size_t begin, end;
};
using Items = std::map<std::string, std::vector<Place>>;

// The items of a file; nothing when it doesn't read to its end.
std::optional<Items> items_of(std::string_view bytes);
// Those of a file that was salvaged which aren't among the `whole` one's, nor what is left of one that was struck. For
// people.
std::vector<std::string> invented(const vtrfile::Salvaged& salvaged, const Items& whole,
                                  const std::vector<Struck>& struck);
// Those of both.
std::int64_t common(const Items& one, const Items& other);
std::int64_t size_of(const Items& items);

}  // namespace trvtrout::tests
