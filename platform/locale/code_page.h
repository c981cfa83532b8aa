#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::platform {

// A single- or double-byte code page that holds ASCII.
class CodePage {
 public:
  // Raises std::invalid_argument for a number that the machine doesn't know or that isn't such a code page.
  explicit CodePage(int number = 1252);

  // What the code page can't express becomes "?", one for each character.
  std::string encode(std::u16string_view text) const;
  // Never fails, and encode brings every byte string back.
  std::u16string decode(std::string_view bytes) const;

 private:
  struct Builder;

  bool is_lead(unsigned char byte) const { return pair_row_[byte] != 0; }
  char16_t pair(unsigned char lead, unsigned char trail) const {
    return pairs_[(pair_row_[lead] - 1U) * std::size_t{256} + trail];
  }

  std::array<char16_t, 256> singles_{};
  // Row of the lead byte in pairs_, counted from 1; 0 for a byte that leads no pair.
  std::array<std::uint8_t, 256> pair_row_{};
  std::vector<char16_t> pairs_;
  // For each character its byte, its lead byte * 256 + trail byte, or kNoBytes.
  std::vector<std::uint16_t> bytes_;
};

// The code page of this number, which is made when it's first asked for: that takes longer than reading a small file.
// Any thread may ask. Raises as the constructor does.
std::shared_ptr<const CodePage> shared_code_page(int number);

}  // namespace trvtrout::platform
