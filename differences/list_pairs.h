#pragma once

#include <cstdint>
#include <vector>

#include "vtrfile/value_types.h"

namespace trvtrout::differences {

// What became of the items of a list. Places are counted from 0.
struct ListPairs {
  static constexpr std::uint32_t kNone = UINT32_MAX;

  struct Partner {
    std::uint32_t old_place = kNone;  // kNone: added
    bool same = false;                // known to be equal; nobody need look into it
    bool moved = false;               // stands elsewhere among the items that both lists have
  };
  // Common to both lists at their beginning, equal; and what stands behind them, item by item.
  std::uint32_t same_in_front = 0, same_behind = 0;
  std::vector<Partner> of_new;       // of the items of the new list between these
  std::vector<bool> removed_of_old;  // of the items of the old list between these
};

// Which items of two lists of one type are partners. As few as possible are moved.
ListPairs pair_items(vtrfile::Value old_list, vtrfile::Value new_list);

}  // namespace trvtrout::differences
