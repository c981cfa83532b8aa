#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Where things stand in an OLE2 file.
namespace trvtrout::spreadsheet::biff8::compound {

inline constexpr std::string_view kSignature = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

inline constexpr std::uint32_t kFree = 0xFFFFFFFF;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kTableSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;

// In the header.
inline constexpr std::size_t kSectorShift = 30;
inline constexpr std::size_t kMiniSectorShift = 32;
inline constexpr std::size_t kTableSectorCount = 44;
inline constexpr std::size_t kDirectoryStart = 48;
inline constexpr std::size_t kCutoff = 56;
inline constexpr std::size_t kMiniTableStart = 60;
inline constexpr std::size_t kDifatStart = 68;
inline constexpr std::size_t kDifatSectorCount = 72;
inline constexpr std::size_t kDifat = 76;
inline constexpr std::size_t kDifatInHeader = 109;
inline constexpr std::size_t kHeaderSize = 512;

// In a directory entry.
inline constexpr std::size_t kEntrySize = 128;
inline constexpr std::size_t kNameSize = 64;
inline constexpr std::size_t kNameLength = 64;
inline constexpr std::size_t kType = 66;
inline constexpr std::size_t kLeft = 68;
inline constexpr std::size_t kRight = 72;
inline constexpr std::size_t kChild = 76;
inline constexpr std::size_t kStart = 116;
inline constexpr std::size_t kSize = 120;
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;

}  // namespace trvtrout::spreadsheet::biff8::compound
