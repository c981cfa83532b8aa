// Every byte string must come back from decode through encode, which the machine's converter doesn't give: it knows
// two codes for some characters, composes some neighbours to one, and refuses bytes that mean nothing. So it is asked
// once for each code by itself, and only a code that it brings back counts as a character.
//
// What is left is carried: in a single-byte page byte NN as U+00NN, or where that character has a byte of its own,
// and always in a double-byte page, as the private-use character U+F7NN. A pair that is carried is carried whole,
// except that a second byte below 80 stands for itself, so that damage never swallows a comma or a line end.
#include "platform/locale/code_page.h"

#include <cstddef>
#include <iconv.h>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <type_traits>

#include "text/surrogates.h"

namespace trvtrout::platform {
namespace {

constexpr char16_t kCarried = 0xF700;
// No lead byte is 01.
constexpr std::uint16_t kNoBytes = 0x0100;

bool is_carrier(char16_t unit) { return (unit & 0xFF00) == kCarried; }

struct CloseConverter {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, CloseConverter>;

Converter open_converter(const std::string& to, const std::string& from) {
  iconv_t converter = iconv_open(to.c_str(), from.c_str());
  if (reinterpret_cast<std::intptr_t>(converter) == -1) return nullptr;
  return Converter(converter);
}

// Nothing when any part of `input` can't be converted.
std::string convert(const Converter& converter, std::string input) {
  std::array<char, 16> buffer{};
  char* in = input.data();
  std::size_t in_left = input.size();
  char* out = buffer.data();
  std::size_t out_left = buffer.size();
  constexpr auto kFailed = static_cast<std::size_t>(-1);
  iconv(converter.get(), nullptr, nullptr, nullptr, nullptr);
  if (iconv(converter.get(), &in, &in_left, &out, &out_left) == kFailed) return {};
  // Some converters hold a character back until they know that nothing composes with it.
  if (iconv(converter.get(), nullptr, nullptr, &out, &out_left) == kFailed) return {};
  return {buffer.data(), out};
}

}  // namespace

struct CodePage::Builder {
  CodePage& page;
  Converter to_text;
  Converter to_bytes;

  // The one character of `code`; 0 when it has none that leads back to it.
  char16_t character(const std::string& code) const {
    const std::string text = convert(to_text, code);
    if (text.size() != sizeof(char16_t) || convert(to_bytes, text) != code) return 0;
    const auto unit =
        static_cast<char16_t>(static_cast<unsigned char>(text[0]) | static_cast<unsigned char>(text[1]) << 8);
    return is_carrier(unit) ? char16_t{0} : unit;
  }

  void add(char16_t unit, unsigned code) const { page.bytes_[unit] = static_cast<std::uint16_t>(code); }

  void add_singles() const {
    for (unsigned byte = 0; byte < 256; ++byte) {
      const char16_t unit = character({static_cast<char>(byte)});
      if (unit == 0 && byte != 0) continue;
      page.singles_[byte] = unit;
      add(unit, byte);
    }
  }

  void add_pairs(unsigned lead) const {
    std::vector<char16_t> row(256);
    bool any = false;
    for (unsigned trail = 0; trail < 256; ++trail) {
      row[trail] = character({static_cast<char>(lead), static_cast<char>(trail)});
      if (row[trail] == 0) continue;
      add(row[trail], lead << 8 | trail);
      any = true;
    }
    if (!any) return;
    page.pairs_.insert(page.pairs_.end(), row.begin(), row.end());
    page.pair_row_[lead] = static_cast<std::uint8_t>(page.pairs_.size() / 256);
  }

  void carry_the_rest() const {
    const bool double_byte = !page.pairs_.empty();
    for (unsigned byte = 0; byte < 256; ++byte) {
      if (double_byte) add(static_cast<char16_t>(kCarried | byte), byte);
      if (byte == 0 || page.singles_[byte] != 0) continue;
      const bool as_itself = !double_byte && page.bytes_[byte] == kNoBytes;
      page.singles_[byte] = static_cast<char16_t>(as_itself ? byte : kCarried | byte);
      add(page.singles_[byte], byte);
    }
  }
};

CodePage::CodePage(int number) : bytes_(0x10000, kNoBytes) {
  const std::string name = "CP" + std::to_string(number);
  const Builder builder{*this, open_converter("UTF-16LE", name), open_converter(name, "UTF-16LE")};
  if (!builder.to_text || !builder.to_bytes) {
    throw std::invalid_argument("code page " + std::to_string(number) + " isn't known on this machine");
  }
  builder.add_singles();
  for (char16_t ascii = 0; ascii < 0x80; ++ascii) {
    if (singles_[ascii] != ascii) {
      throw std::invalid_argument("code page " + std::to_string(number) + " can't be used: it doesn't hold ASCII");
    }
  }
  for (unsigned lead = 0x80; lead < 256; ++lead) {
    if (singles_[lead] == 0) builder.add_pairs(lead);
  }
  builder.carry_the_rest();
}

std::string CodePage::encode(std::u16string_view text) const {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::uint16_t code = bytes_[text[at]];
    if (code == kNoBytes) {
      bytes += '?';
      if (text::is_pair_at(text, at)) ++at;
      continue;
    }
    if (code > 0xFF) bytes += static_cast<char>(code >> 8);
    bytes += static_cast<char>(code & 0xFF);
  }
  return bytes;
}

std::u16string CodePage::decode(std::string_view bytes) const {
  std::u16string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    if (!is_lead(byte) || at + 1 == bytes.size()) {
      text += singles_[byte];
      continue;
    }
    const auto trail = static_cast<unsigned char>(bytes[at + 1]);
    if (const char16_t unit = pair(byte, trail); unit != 0) {
      text += unit;
      ++at;
      continue;
    }
    text += singles_[byte];
    if (trail < 0x80) continue;
    text += static_cast<char16_t>(kCarried | trail);
    ++at;
  }
  return text;
}

std::shared_ptr<const CodePage> shared_code_page(int number) {
  static std::mutex mutex;
  static std::map<int, std::shared_ptr<const CodePage>> pages;
  const std::scoped_lock lock(mutex);
  auto& page = pages[number];
  if (!page) page = std::make_shared<const CodePage>(number);
  return page;
}

}  // namespace trvtrout::platform
