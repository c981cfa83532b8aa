#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// What the document's form is called, and its members in their order (docs/json.md).
namespace trvtrout::exchange {

inline constexpr std::string_view kDocumentForm = "vtr-document";
inline constexpr int kDocumentFormVersion = 1;
inline constexpr std::array<std::string_view, 5> kDocumentMembers{"form", "version", "codePage", "header", "sections"};
enum DocumentMember : std::uint32_t { kFormMember, kVersionMember, kCodePageMember, kHeaderMember, kSectionsMember };

}  // namespace trvtrout::exchange
