#include "workbook/label_colors.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "compare/row_labels.h"

namespace trvtrout {
namespace {

// A range takes this many addresses and one more.
constexpr int kMaxAddresses = 20;

struct Label {
  std::string_view text;
  std::int16_t color_index;
};

constexpr Label kLabels[] = {
    {kOriginalLabel, 10},
    {kChangedLabel, 5},
    {kDeletedLabel, 3},
    {kAddedLabel, 53},
};

// Cells that are to be formatted together.
struct AddressList {
  std::u16string addresses;
  int count = 0;

  void add(const std::u16string& address) {
    if (!addresses.empty()) addresses += u',';
    addresses += address;
    ++count;
  }
  void apply(automation::Worksheet& sheet, std::int16_t color_index) {
    sheet.GetRange(addresses)->Cells()->GetFont()->SetColorIndex(color_index);
    sheet.GetRange(addresses)->Cells()->GetFont()->SetBold(true);
    *this = {};
  }
};

std::optional<std::size_t> label_of(const std::u16string& text) {
  for (std::size_t index = 0; index < std::size(kLabels); ++index) {
    const std::string_view label = kLabels[index].text;
    if (text == std::u16string(label.begin(), label.end())) return index;
  }
  return std::nullopt;
}

std::u16string address_of(std::int64_t row) {
  const std::string digits = std::to_string(row);
  return u'A' + std::u16string(digits.begin(), digits.end());
}

}  // namespace

void color_labels(automation::Worksheet& sheet, std::int64_t first_row, std::int64_t last_row) {
  std::array<AddressList, std::size(kLabels)> lists;
  for (std::int64_t row = first_row; row <= last_row; ++row) {
    const std::u16string address = address_of(row);
    const auto value = sheet.GetRange(address)->Cells()->Value();
    const auto label = value ? label_of(*value) : std::nullopt;
    if (!label) continue;
    lists[*label].add(address);
    if (lists[*label].count > kMaxAddresses) lists[*label].apply(sheet, kLabels[*label].color_index);
  }
  for (std::size_t label = 0; label < lists.size(); ++label) {
    if (!lists[label].addresses.empty()) lists[label].apply(sheet, kLabels[label].color_index);
  }
}

}  // namespace trvtrout
