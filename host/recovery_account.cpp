#include "host/recovery_account.h"

#include <algorithm>

#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using vtrfile::Array;
using vtrfile::DocumentSlots;
using vtrfile::kSection;
using vtrfile::PartRead;

constexpr std::string_view kSchema = kSection<&DocumentSlots::Schema>.tag;
constexpr std::string_view kHidden = kSection<&DocumentSlots::Hidden>.tag;
constexpr std::string_view kDataSend = kSection<&DocumentSlots::DataSend>.tag;

std::int64_t not_negative(std::int64_t count) { return std::max<std::int64_t>(count, 0); }

// Elements that the file held; those that it only announced are in the array too, and empty.
template <class Item>
std::int64_t held(const Array<Item>& items) {
  return items.allocated() ? items.block().stored : 0;
}

// The sum of what `number` tells of each item that the file held.
template <class Item, class Number>
std::int64_t sum(const Array<Item>& items, Number number) {
  std::int64_t total = 0;
  for (std::int64_t place = 0; place < held(items); ++place) {
    total += number(items.position(static_cast<std::uint32_t>(place)));
  }
  return total;
}

std::int64_t announced_fields(const vtrfile::TABLES_STRUCT& tables) {
  return sum(tables.Items, [](const vtrfile::TABLES_ITEM_STRUCT& table) { return not_negative(table.Fields.Count); });
}

// The recount of these lists looks at no slot, so what was kept is counted here.
std::vector<KeptList> data_send_lists(const vtrfile::DATASEND_STRUCT& before, const vtrfile::DATASEND_STRUCT& after) {
  using Definition = vtrfile::DATASEND_ITEM_STRUCT;
  const auto announced = [](const Definition& item) { return not_negative(item.Count); };
  const auto kept = [](const Definition& item) { return std::min(not_negative(item.Count), held(item.Nodes)); };
  return {{"Definitions", "definitions", not_negative(before.Count),
           std::min(not_negative(after.Count), held(after.Items))},
          {"Nodes", "nodes", sum(before.Items, announced), sum(after.Items, kept)}};
}

bool holds_together(const AccountList& list) { return list.result == u"OK"; }

// What the file says of the section that is called `name`.
struct Found {
  const PartRead* last = nullptr;  // the one whose record remains; null when the section wasn't met
  std::uint64_t read = 0;
  int records = 0;
};

Found find(const std::vector<PartRead>& parts, std::string_view name) {
  Found found;
  for (const PartRead& part : parts) {
    if (part.name != name) continue;
    if (part.records > 0 || !found.last) found.last = &part;
    found.read += part.end - part.begin;
    found.records += part.records;
  }
  return found;
}

class Accountant {
 public:
  Accountant(const DocumentState& before, const DocumentState& after, const std::vector<PartRead>& parts)
      : before_(before), after_(after), parts_(parts), complete_(find(parts, vtrfile::kEndTag).last != nullptr) {}

  KeptPart header() const {
    const PartRead& header = parts_.front();
    return {header.name, header.whole ? Fate::kWhole : Fate::kPartlyRead, header.end, header.end, {}};
  }

  KeptPart section(std::string_view name, std::uint64_t written) const {
    const Found found = find(parts_, name);
    if (!found.last) return {.name = name, .fate = complete_ ? Fate::kAbsent : Fate::kNotReached};
    KeptPart part{name, fate(name, found), found.read, 0, lists(name, found.last->whole)};
    // A record that was emptied as a whole is none that was kept; of the two with several lists the rest stays.
    if (part.fate != Fate::kEmptied || name == kSchema || name == kHidden) {
      const std::uint64_t tag = found.last->content - found.last->begin;
      part.kept = tag + (found.last->records > 0 ? std::min(found.last->end - found.last->record, written) : 0);
    }
    return part;
  }

 private:
  Fate fate(std::string_view name, const Found& found) const {
    Fate fate = Fate::kWhole;
    if (!found.last->carried_over) fate = Fate::kLeftBehind;
    if (found.records > 1) fate = Fate::kReplaced;
    for (std::size_t list = 0; list < before_.lists.size(); ++list) {
      if (before_.lists[list].section == name && !holds_together(before_.lists[list])) {
        if (holds_together(after_.lists[list])) return Fate::kEmptied;
        fate = Fate::kUnsound;
      }
    }
    return found.last->whole ? fate : Fate::kPartlyRead;
  }

  std::vector<KeptList> lists(std::string_view name, bool whole) const {
    std::vector<KeptList> lists;
    if (name == kDataSend) lists = data_send_lists(*before_.slots.DataSend, *after_.slots.DataSend);
    for (std::size_t number = 0; name != kDataSend && number < before_.lists.size(); ++number) {
      const AccountList& list = before_.lists[number];
      if (list.section != name) continue;
      KeptList& kept = lists.emplace_back(KeptList{list.title, list.key, {}, {}});
      kept.announced =
          list.count ? not_negative(*list.count)
                     : announced_fields(name == kSchema ? before_.slots.Schema->Tables : before_.slots.Hidden->Tables);
      if (holds_together(after_.lists[number])) kept.kept = after_.lists[number].size;
    }
    // The number that stands in front of a list may be behind the place where reading stopped.
    for (KeptList& list : lists) {
      if (!whole && list.announced == 0) list.announced.reset();
    }
    return lists;
  }

  const DocumentState& before_;
  const DocumentState& after_;
  const std::vector<PartRead>& parts_;
  bool complete_;
};

}  // namespace

FateText text_of(Fate fate) {
  switch (fate) {
    case Fate::kWhole:
      return {"whole", "whole"};
    case Fate::kAbsent:
      return {"not in the file", "absent"};
    case Fate::kPartlyRead:
      return {"partly read", "partlyRead"};
    case Fate::kEmptied:
      return {"emptied, failed its test", "emptied"};
    case Fate::kUnsound:
      return {"kept, failed its test", "unsound"};
    case Fate::kReplaced:
      return {"more than one, the last kept", "replaced"};
    case Fate::kLeftBehind:
      return {"not all has a place", "leftBehind"};
    case Fate::kNotReached:
      return {"never reached", "notReached"};
  }
  return {};
}

DocumentState state_of(TarvelVtrOut_InOut& utility, Locale& locale) {
  return {utility.CurrentSlots(), account_for(utility, locale).lists};
}

RecoveryAccount account_for_recovery(const DocumentState& before, const DocumentState& after,
                                     const std::vector<PartRead>& parts, const std::vector<std::uint64_t>& written,
                                     std::uint64_t bytes) {
  const Accountant accountant(before, after, parts);
  RecoveryAccount account{.parts = {accountant.header()}, .bytes = bytes};
  std::size_t number = 0;
  vtrfile::for_each_section(
      [&](const auto& section) { account.parts.push_back(accountant.section(section.tag, written.at(number++))); });

  const Found end = find(parts, vtrfile::kEndTag);
  account.kept = end.read;
  if (end.last && end.last->end < bytes) account.behind_end = bytes - end.last->end;
  for (const KeptPart& part : account.parts) account.kept += part.kept;
  account.nothing_lost = end.last && std::ranges::all_of(account.parts, [](const KeptPart& part) {
                           return part.fate == Fate::kWhole || part.fate == Fate::kAbsent;
                         });
  return account;
}

}  // namespace trvtrout::host
