#include "host/batch/folder_pairs.h"

#include <filesystem>
#include <iomanip>
#include <map>
#include <system_error>

#include "host/batch/inputs.h"
#include "platform/console/printable.h"
#include "text/utf8.h"

namespace trvtrout::host {

PairList pair_folders(const std::string& old_folder, const std::string& new_folder, bool recursive) {
  const auto is_there = [](const std::string& folder, const std::string& path) {
    std::error_code none;
    return std::filesystem::exists(in_folder(folder, path), none);
  };
  std::map<std::string, FolderPair> pairs;
  PairList list;
  for (const auto& [folder, is_in] : {std::pair(old_folder, &FolderPair::in_old), {new_folder, &FolderPair::in_new}}) {
    FolderList files = list_folder(folder, recursive);
    list.is_whole = list.is_whole && files.is_whole;
    for (const std::string& path : files.paths) pairs[path].*is_in = true;
  }
  for (auto& [path, pair] : pairs) {
    list.pairs.push_back({path, pair.in_old || is_there(old_folder, path), pair.in_new || is_there(new_folder, path)});
  }
  return list;
}

void PairTable::add(const std::string& path, const std::optional<PairCounts>& counts, const char* why) {
  rows_.push_back({path, counts, why});
}

void PairTable::print(std::ostream& out) const {
  constexpr int kNumberWidth = 11;
  const auto each_head = [&](const auto& show) {
    for (std::size_t at = 0; at < heads_.size() && heads_[at]; ++at) out << std::setw(kNumberWidth), show(at);
  };
  out << std::right;
  each_head([&](std::size_t at) { out << heads_[at]; });
  out << "  file\n";
  for (const Row& row : rows_) {
    each_head([&](std::size_t at) { row.counts ? out << (*row.counts)[at] : out << '-'; });
    out << "  " << platform::printable_line(text::from_utf8(row.path));
    if (row.why) out << "  (" << row.why << ')';
    out << '\n';
  }
}

}  // namespace trvtrout::host
