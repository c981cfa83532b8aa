#include "platform/program/areas.h"

#include <optional>
#include <string>

#include "spreadsheet/workbook_file.h"
#include "text/utf8.h"

namespace trvtrout::platform {

using namespace spreadsheet;

namespace {

// Of no format's sheet: numbers up to here don't overflow.
constexpr std::uint32_t kMaxNumber = 100'000'000;

// A column, a row or both, each counted from 1; 0 for one that isn't there.
struct Reference {
  std::uint32_t column = 0, row = 0;
};

std::optional<Reference> parse_reference(std::u16string_view text) {
  Reference reference;
  while (!text.empty() && text.front() >= u'A' && text.front() <= u'Z' && reference.column < kMaxNumber / 26) {
    reference.column = reference.column * 26 + (text.front() - u'A' + 1U);
    text.remove_prefix(1);
  }
  while (!text.empty() && text.front() >= u'0' && text.front() <= u'9' && reference.row < kMaxNumber / 10) {
    reference.row = reference.row * 10 + (text.front() - u'0');
    text.remove_prefix(1);
  }
  if (!text.empty() || reference.column == 0) return std::nullopt;
  return reference;
}

std::optional<Area> parse_area(std::u16string_view text) {
  const std::size_t colon = text.find(u':');
  const auto first = parse_reference(text.substr(0, colon));
  const auto last = colon == text.npos ? first : parse_reference(text.substr(colon + 1));
  if (!first || !last || first->column > last->column || (first->row == 0) != (last->row == 0)) return std::nullopt;
  if (first->row == 0) return Area{0, kWholeColumn, first->column - 1, last->column - 1};
  if (first->row > last->row) return std::nullopt;
  return Area{first->row - 1, last->row - 1, first->column - 1, last->column - 1};
}

}  // namespace

std::vector<Area> parse_addresses(std::u16string_view addresses) {
  std::vector<Area> areas;
  for (std::u16string_view rest = addresses;;) {
    const std::size_t comma = rest.find(u',');
    const auto area = parse_area(rest.substr(0, comma));
    if (!area) throw WorkbookError("\"" + text::to_utf8(addresses) + "\" isn't a list of cell addresses");
    areas.push_back(*area);
    if (comma == rest.npos) return areas;
    rest.remove_prefix(comma + 1);
  }
}

}  // namespace trvtrout::platform
