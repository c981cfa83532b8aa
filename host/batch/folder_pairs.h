#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace trvtrout::host {

// A file of two folders that are compared, by its path below them.
struct FolderPair {
  std::string path;
  bool in_old = false, in_new = false;
};

// In the order of their names; what is a VTR file in one of the folders is compared with the other's file of that name.
struct PairList {
  std::vector<FolderPair> pairs;
  bool is_whole = true;  // false when a folder couldn't be read, of which the user has been told
};
PairList pair_folders(const std::string& old_folder, const std::string& new_folder, bool recursive);

// How many of each kind a comparison counted.
using PairCounts = std::array<std::size_t, 5>;

// One row for each pair, with its counts or why there are none.
class PairTable {
 public:
  // `heads`: of the counts, null behind the last.
  explicit PairTable(std::array<const char*, std::tuple_size_v<PairCounts>> heads) : heads_(heads) {}
  void add(const std::string& path, const std::optional<PairCounts>& counts, const char* why);
  void print(std::ostream& out) const;

 private:
  struct Row {
    std::string path;
    std::optional<PairCounts> counts;
    const char* why;
  };
  std::array<const char*, std::tuple_size_v<PairCounts>> heads_;
  std::vector<Row> rows_;
};

}  // namespace trvtrout::host
