#pragma once

#include <string_view>

namespace trvtrout {

// What a comparison's text begins with, behind an empty cell.
inline constexpr std::string_view kComparisonTitle = "Compared Statistic for files: ";

// What stands in the first cell of an item row that isn't alike on both sides.
inline constexpr std::string_view kOriginalLabel = "Original in Primary";
inline constexpr std::string_view kChangedLabel = "Changed in Secondary";
inline constexpr std::string_view kDeletedLabel = "Deleted from Primary";
inline constexpr std::string_view kAddedLabel = "Added in Secondary";

}  // namespace trvtrout
