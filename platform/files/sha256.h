#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace trvtrout::platform {

using Sha256 = std::array<std::uint8_t, 32>;

Sha256 sha256(std::string_view bytes);

// Of all that `read` fills its argument with, piece by piece; it returns how many bytes came, 0 at the end. Raises what
// `read` raises.
Sha256 sha256(const std::function<std::size_t(std::span<unsigned char>)>& read);

// In lower case.
std::string hex(const Sha256& digest);
std::string base64(const Sha256& digest);

}  // namespace trvtrout::platform
