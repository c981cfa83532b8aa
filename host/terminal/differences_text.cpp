#include "host/terminal/differences_text.h"

#include <algorithm>
#include <iterator>

#include "host/counted.h"
#include "host/terminal/text_change.h"
#include "host/terminal/value_lines.h"
#include "host/terminal/value_text.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/part_read.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using differences::Difference;
using differences::Kind;
using vtrfile::Value;

void enumerate(std::string& text, const std::string& more) { (text += text.empty() ? "" : ", ") += more; }

std::string title_of(std::string_view tag) {
  std::string title(tag);
  vtrfile::for_each_section([&](const auto& section) {
    if (section.tag == tag) title = section.title;
  });
  return title;
}

using Lines = std::vector<std::string>;

// A changed variant. Of two short arrays of the same length the elements that differ are told, each on
// a line.
Lines variant_change(Locale& locale, const Painter& painter, const vtrfile::VariantValue& old_value,
                     const vtrfile::VariantValue& new_value) {
  constexpr std::uint32_t kMost = 64;
  const std::uint32_t count = element_count(old_value);
  if (count > 0 && count <= kMost && old_value.tag == new_value.tag && element_count(new_value) == count) {
    Lines all{""};
    for (std::uint32_t place = 0; place < count; ++place) {
      const auto old_element = element_at(old_value, place), new_element = element_at(new_value, place);
      Lines lines = variant_change(locale, painter, old_element, new_element);
      if (lines.empty()) continue;
      lines.front() = '[' + std::to_string(place + 1) + "] " + lines.front();
      std::ranges::move(lines, std::back_inserter(all));
    }
    return all;
  }
  if (old_value.tag == vtrfile::kVariantText && new_value.tag == vtrfile::kVariantText) {
    const auto old_text = vtrfile::Text(old_value.body).bytes(), new_text = vtrfile::Text(new_value.body).bytes();
    return old_text == new_text ? Lines() : text_change(locale, painter, old_text, new_text);
  }
  const std::string old_text = value_text(locale, old_value), new_text = value_text(locale, new_value);
  if (old_text == new_text) return {};
  return {painter.removed(old_text) + " -> " + painter.added(new_text)};
}

// A changed value as lines, behind the name of its member.
Lines change_lines(Locale& locale, const Painter& painter, const Difference& difference) {
  const Value& old_value = difference.place.old_value;
  const Value& new_value = difference.place.new_value;
  if (old_value.kind() == vtrfile::Kind::kText) {
    return text_change(locale, painter, old_value.text().bytes(), new_value.text().bytes());
  }
  if (old_value.kind() == vtrfile::Kind::kVariant) {
    Lines lines = variant_change(locale, painter, value_of(old_value.variant()), value_of(new_value.variant()));
    if (lines.size() > 1 || (lines.size() == 1 && !lines.front().empty())) return lines;
  }
  std::string old_text = value_text(locale, old_value), new_text = value_text(locale, new_value);
  if (old_text == new_text) new_text += ", with other content";
  return {painter.removed(old_text) + " -> " + painter.added(new_text)};
}

// What tells an item to somebody who doesn't know its key: its first texts.
class Gist {
 public:
  explicit Gist(Locale& locale) : locale_(locale) {}

  std::string of(Value item) {
    if (item.kind() != vtrfile::Kind::kRecord) return value_text(locale_, item);
    add_texts(item, vtrfile::key_member(item.type()));
    return text_;
  }

 private:
  void add_texts(Value record, const vtrfile::MemberType* key) {
    for (const vtrfile::MemberType& member : record.type().members) {
      const Value value = record.member(member);
      if (value.kind() == vtrfile::Kind::kRecord) add_texts(value, nullptr);
      if (value.kind() == vtrfile::Kind::kText && &member != key && !is_empty(value)) add(member.name, value.text());
    }
  }
  void add(const char* name, vtrfile::Text value) {
    constexpr int kMost = 4;
    constexpr std::size_t kLong = 40;
    if (++told_ > kMost) return;
    const std::string_view bytes = value.bytes();
    const bool is_long = bytes.size() > kLong;
    enumerate(text_, std::string(name) + " \"" + shown(locale_, bytes.substr(0, kLong)) + (is_long ? "...\"" : "\""));
  }

  Locale& locale_;
  std::string text_;
  int told_ = 0;
};

// Whether the place is in the list, or is one of its numbers.
bool is_within(const Label& label, const std::string& list) {
  const std::string whole =
      label.item.empty() || label.member.empty() ? label.item + label.member : label.item + " / " + label.member;
  return whole.starts_with(list) &&
         (list.empty() || whole.size() == list.size() || whole[list.size()] == ' ' || whole[list.size()] == '/');
}

}  // namespace

void DifferencesText::tell(const Difference& difference) {
  const Label label = label_of(locale_, difference.place);
  if (label.section != section_) begin_section(label.section);
  const bool is_item = difference.kind != Kind::kChanged;
  if (is_item || label.item != item_) end_item();
  end_lists(label);
  if (!all_ && difference.is_bookkeeping()) return put_aside(label, difference);
  if (is_item) {
    show_item(label, difference);
  } else {
    show_change(label, difference);
  }
}

void DifferencesText::finish() { begin_section({}); }

void DifferencesText::begin_section(const std::string& section) {
  end_item();
  end_lists({});
  section_ = section;
  if (!section.empty()) out_ << painter_.heading(title_of(section)) << '\n';
}

void DifferencesText::show_change(const Label& label, const Difference& difference) {
  item_ = label.item;
  Lines lines = change_lines(locale_, painter_, difference);
  // The element of a list of texts has no members.
  const std::string name = label.member.empty() ? "" : painter_.changed(label.member) + ' ';
  lines.front() = name + lines.front();
  changes_.push_back(std::move(lines));
}

// A single change stands on the line of its item.
void DifferencesText::end_item() {
  if (changes_.empty()) return;
  const bool on_one_line = changes_.size() == 1 || item_.empty();
  if (!on_one_line) line(" ", item_ + ":");
  for (const std::vector<std::string>& lines : changes_) {
    const std::string lead = item_.empty() ? "" : on_one_line ? item_ + ": " : "  ";
    line(" ", lead + lines.front());
    for (std::size_t at = 1; at < lines.size(); ++at) line(" ", "    " + lines[at]);
  }
  changes_.clear();
  item_.clear();
}

void DifferencesText::show_item(const Label& label, const Difference& difference) {
  const differences::Place& place = difference.place;
  if (difference.kind == Kind::kMoved) {
    return line(painter_.changed(">").c_str(), painter_.changed(label.item) + ": moved from place " +
                                                   std::to_string(place.old_number) + " to " +
                                                   std::to_string(place.new_number));
  }
  const bool removed = difference.kind == Kind::kRemoved;
  const Value item = removed ? place.old_value : place.new_value;
  const auto in_color = [&](const std::string& text) {
    return removed ? painter_.removed(text) : painter_.added(text);
  };
  const std::string what = difference.unused() ? "an unused slot" : all_ ? "" : Gist(locale_).of(item);
  line(in_color(removed ? "-" : "+").c_str(), in_color(label.item + (what.empty() ? "" : ": " + what)));
  if (!all_) return;
  for_each_line(locale_, item, [&](const std::string& text) { line(" ", "    " + in_color(text)); });
}

void DifferencesText::put_aside(const Label& label, const Difference& difference) {
  using differences::Bookkeeping;
  const Bookkeeping kind = difference.bookkeeping();
  const std::size_t last = label.member.rfind('/');
  const std::string record = last == std::string::npos ? "" : label.member.substr(0, last);
  std::string list = label.list;
  if (kind == Bookkeeping::kSlotNumber || label.item.empty()) {
    list = label.item.empty() || record.empty() ? label.item + record : label.item + " / " + record;
  }
  if (aside_.empty() || aside_.back().list != list) aside_.push_back({.list = list});
  Aside& aside = aside_.back();
  ++(kind == Bookkeeping::kSpare ? aside.spare : kind == Bookkeeping::kSlotNumber ? aside.numbers : aside.unused_slots);
}

void DifferencesText::end_lists(const Label& label) {
  while (!aside_.empty()) {
    const Aside& aside = aside_.back();
    if (label.section == section_ && is_within(label, aside.list)) return;
    end_item();
    std::string what;
    if (aside.unused_slots > 0) enumerate(what, counted(aside.unused_slots, "unused slot"));
    if (aside.numbers > 0) enumerate(what, counted(aside.numbers, "number") + " of slots");
    if (aside.spare > 0) enumerate(what, counted(aside.spare, "spare value"));
    line(" ", painter_.aside((aside.list.empty() ? "" : aside.list + ": ") + "only bookkeeping: " + what));
    aside_.pop_back();
  }
}

}  // namespace trvtrout::host
