#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "compare/comparison_counts.h"
#include "compare/match.h"
#include "reports/report_frame.h"

namespace trvtrout {

// The forms of an item row, by the label in its first cell.
enum class RowForm { kUnchanged, kOriginal, kChanged, kDeleted, kAdded };

// Writes the row forms of a comparison.
class ComparisonWriter {
 public:
  // The base names are those of the files, in bytes of the code page. All must outlive the writer.
  ComparisonWriter(ReportWriter& out, const std::string& primary_name, const std::string& secondary_name,
                   ComparisonCounts& counts) noexcept
      : out_(out), primary_name_(primary_name), secondary_name_(secondary_name), counts_(counts) {}

  ReportWriter& out() noexcept { return out_; }

  // `title` with each file's base name behind it; ends in the opening bracket.
  void title(std::string_view title);
  // A row for each label, the values of both sides beside one another.
  template <class Record>
  void values(std::span<const Column<Record>> labels, const Record& primary, const Record& secondary) {
    for (const auto& column : labels) {
      const std::string cell = std::string(column.head) + ',';
      std::string row = ",," + cell;
      column.append(row, primary);
      (row += ",,,,") += cell;
      column.append(row, secondary);
      out_.line(row);
    }
  }
  // One item row: the label of `form`, then `lead`, the cells and `tail`.
  template <class Item>
  void row(RowForm form, std::string_view lead, std::span<const Column<Item>> columns, const Item& item,
           std::string_view tail = {}) {
    out_.item(std::string(label(form)).append(lead), columns, item, tail);
    count(form);
  }

 private:
  static std::string_view label(RowForm form);
  void count(RowForm form);

  ReportWriter& out_;
  const std::string& primary_name_;
  const std::string& secondary_name_;
  ComparisonCounts& counts_;
};

// Whether a compared column differs between two records.
template <class Item>
bool differs(std::span<const Column<Item>> columns, const Item& one, const Item& other) {
  return std::ranges::any_of(
      columns, [&](const Column<Item>& column) { return column.mark == Mark::kCompared && !column.same(one, other); });
}

// The columns of a table that a comparison has.
template <const auto& kColumns>
constexpr auto compared_columns() {
  constexpr auto is_in = [](const auto& column) { return column.mark != Mark::kReportOnly; };
  std::array<std::remove_cvref_t<decltype(kColumns[0])>, std::ranges::count_if(kColumns, is_in)> columns{};
  std::ranges::copy_if(kColumns, columns.begin(), is_in);
  return columns;
}

// One of the two lists of a comparison: the array with the number of its records in use.
template <class Item>
struct Side {
  vtrfile::Array<Item> items;
  std::int32_t count;

  // Raises SubscriptOutOfRange at the end of an array that is shorter than its count.
  const Item& at(std::int32_t number) const { return items.at(number); }
  // The number of records that the walk takes; raises SubscriptOutOfRange when it isn't countable.
  std::int32_t records() const {
    require_countable(count);
    return std::max(count, 0);
  }
};

template <class List, class Item = std::remove_cvref_t<decltype(std::declval<List&>().Items.position(0))>>
Side<Item> side_of(const List& list) {
  return {list.Items, list.Count};
}

// The item rows of two lists with the same columns.
template <class Item>
struct ItemRows {
  ComparisonWriter& writer;
  std::span<const Column<Item>> columns;
  Side<Item> primary;
  Side<Item> secondary;
  std::string_view lead = ",,,";         // between the label and the first cell
  std::string_view single_lead = ",,,";  // the same in a deleted and an added row
  std::string_view tail = {};

  void pair(std::int32_t number, std::int32_t partner) const {
    const Item& original = primary.at(number);
    const Item& changed = secondary.at(partner);
    write_pair(original, changed, differs(columns, original, changed));
  }
  void deleted(std::int32_t number) const {
    writer.row(RowForm::kDeleted, single_lead, columns, primary.at(number), tail);
  }
  void added(std::int32_t number) const {
    writer.row(RowForm::kAdded, single_lead, columns, secondary.at(number), tail);
  }

  void write_pair(const Item& original, const Item& changed, bool is_changed) const {
    if (!is_changed) return writer.row(RowForm::kUnchanged, lead, columns, original, tail);
    writer.row(RowForm::kOriginal, lead, columns, original, tail);
    writer.row(RowForm::kChanged, lead, columns, changed, tail);
  }
};

// The policy for two lists whose records find their partners by key(item).
template <class Item, class Key>
ByKey by_key(const Side<Item>& primary, const Side<Item>& secondary, Key key,
             PartnerFrom from = PartnerFrom::kWorkingList) {
  return ByKey([&primary, key](std::int32_t number) { return key(primary.at(number)); },
               [&secondary, key](std::int32_t number) { return key(secondary.at(number)); }, secondary.records(), from);
}

}  // namespace trvtrout
