#include "bench/document_maker.h"

#include <cctype>
#include <cstdint>
#include <iterator>

namespace trvtrout::bench {

namespace {

constexpr std::string_view kWords[] = {"pump",  "valve",    "motor",  "filter",     "meter",   "tank", "line",
                                       "area",  "site",     "order",  "work",       "shift",   "crew", "vendor",
                                       "stock", "part",     "labour", "permit",     "asset",   "cost", "status",
                                       "gauge", "schedule", "region", "inspection", "priority"};

}  // namespace

std::string numbered(std::string_view prefix, int number) {
  constexpr std::size_t kDigits = 5;
  const std::string digits = std::to_string(number);
  return std::string(prefix).append(kDigits - std::min(kDigits, digits.size()), '0') + digits;
}

std::string capitals(std::string text) {
  for (char& c : text) c = c == ' ' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string stored_text(std::string_view text) {
  const auto size = static_cast<std::uint16_t>(text.size());
  return std::string(reinterpret_cast<const char*>(&size), sizeof size).append(text);
}

std::string DocumentMaker::words(int count) {
  std::string text;
  for (int word = 0; word < count; ++word) {
    if (word > 0) text += ' ';
    text += kWords[below(std::size(kWords))];
  }
  return text;
}

const unsigned char* DocumentMaker::keep(std::string_view bytes) {
  auto* const at = memory_.allocate_object<unsigned char>(bytes.size());
  std::ranges::copy(bytes, at);
  return at;
}

Text DocumentMaker::description(const std::string& text) {
  const bool changed = size_.every_nth_changed > 0 && ++descriptions_ % size_.every_nth_changed == 0;
  return this->text(changed ? text + ", revised" : text);
}

HEADER_STRUCT DocumentMaker::header() {
  HEADER_STRUCT header{};
  header.Created = text("6/1/2004 2:11:05 PM");
  header.Modified = text("6/2/2004 9:05:00 AM");
  header.FileName = text("C:\\Data\\Large.VTR");
  header.Version = text("01.02.00");
  return header;
}

SECTION_TAG_STRUCT DocumentMaker::tag(std::string_view name) {
  SECTION_TAG_STRUCT tag{};
  tag.Tag = text(name);
  tag.Count = 1;
  return tag;
}

}  // namespace trvtrout::bench
