#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "reports/columns.h"
#include "services/host_services.h"
#include "vtrfile/lists.h"

namespace trvtrout {

// Writes the row forms of the reports to a text stream.
class ReportWriter {
 public:
  // `stream` and `locale` must outlive the writer.
  ReportWriter(TextStream& stream, Locale& locale) noexcept : stream_(stream), locale_(locale) {}

  Locale& locale() noexcept { return locale_; }
  // The present date and time in general form, in bytes of the code page.
  std::string present_moment() { return locale_.Encode(locale_.GeneralDate(locale_.Now())); }

  void line(std::string_view text) { stream_.WriteLine(text); }
  // A row that a spreadsheet takes as two empty ones.
  void gap() { stream_.WriteLine("\r"); }
  // A label in the second cell and its value in the third.
  void label(std::string_view label, std::string_view value);
  // A row for each label, with the values of `record`.
  template <class Record>
  void labels(std::span<const Column<Record>> labels, const Record& record) {
    for (const auto& column : labels) {
      scratch_.clear();
      column.append(scratch_, record);
      label(column.head, scratch_);
    }
  }
  // The label of a recount, from `prefix` on, and what it found; `failed` when the list doesn't hold together.
  void counted(const vtrfile::ListInfo& info, std::string_view prefix = ",", std::string_view failed = {});

  // The heads of the columns between `lead` and `tail`.
  template <class Item>
  void heads(std::string_view lead, std::span<const Column<Item>> columns, std::string_view tail = {}) {
    scratch_ = lead;
    for (const auto& column : columns) (scratch_ += column.head) += &column == &columns.back() ? "" : ",";
    line(scratch_ += tail);
  }
  // The cells of one item between `lead` and `tail`.
  template <class Item>
  void item(std::string_view lead, std::span<const Column<Item>> columns, const Item& item,
            std::string_view tail = {}) {
    scratch_ = lead;
    append_cells(scratch_, columns, item);
    line(scratch_ += tail);
  }

  template <class Item>
  static void append_cells(std::string& row, std::span<const Column<Item>> columns, const Item& item) {
    for (const auto& column : columns) {
      column.append(row, item);
      if (&column != &columns.back()) row += ',';
    }
  }

 private:
  TextStream& stream_;
  Locale& locale_;
  std::string scratch_;
};

// Raises SubscriptOutOfRange for a count that doesn't fit the 16 bits in which reports and comparisons count.
inline void require_countable(std::int32_t count) {
  if (count > std::numeric_limits<std::int16_t>::max()) throw vtrfile::SubscriptOutOfRange();
}

// Calls visit(item, number) for the items 1 to `count`. Raises SubscriptOutOfRange at the end of an array that is
// shorter, and before the first item when `count` isn't countable.
template <class Item, class Visit>
void for_each_item(const vtrfile::Array<Item>& items, std::int32_t count, Visit&& visit) {
  require_countable(count);
  for (std::int32_t number = 1; number <= count; ++number) visit(items.at(number), number);
}

// A block of a report about one list: what it says of itself, the recount, and a row for each item.
template <class List, class Item>
struct ListBlock {
  std::string_view title;
  std::span<const Column<List>> numbers;
  vtrfile::ListId id;
  std::string_view uncounted;   // printed in place of a recount that failed
  std::string_view item_title;  // the whole row
  std::span<const Column<Item>> columns;
  std::string_view item_lead = ",,";
};

template <class List, class Item>
void write_list(ReportWriter& out, const ListBlock<List, Item>& block, const vtrfile::DocumentSlots& document,
                const List& list) {
  out.line(block.title);
  out.labels(block.numbers, list);
  out.counted(vtrfile::list_of(block.id).recount(document), ",", block.uncounted);
  out.line(block.item_title);
  out.heads(",,", block.columns);
  for_each_item(list.Items, list.Count,
                [&](const Item& item, std::int32_t) { out.item(block.item_lead, block.columns, item); });
}

}  // namespace trvtrout
