#pragma once

#include <string_view>

// What stands in the first cell of an item row that isn't alike on both sides.
namespace trvtrout {

inline constexpr std::string_view kOriginalLabel = "Original in Primary";
inline constexpr std::string_view kChangedLabel = "Changed in Secondary";
inline constexpr std::string_view kDeletedLabel = "Deleted from Primary";
inline constexpr std::string_view kAddedLabel = "Added in Secondary";

}  // namespace trvtrout
