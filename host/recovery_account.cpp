#include "host/recovery_account.h"

#include <algorithm>

#include "vtrfile/lists.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using vtrfile::Carried;
using vtrfile::DocumentSlots;
using vtrfile::kSection;
using vtrfile::PartRead;

constexpr std::string_view kSchema = kSection<&DocumentSlots::Schema>.tag;
constexpr std::string_view kHidden = kSection<&DocumentSlots::Hidden>.tag;

// What the file says of the section that is called `name`.
struct Found {
  const PartRead* last = nullptr;  // the one whose record remains; null when the section wasn't met
  std::uint64_t read = 0;
  std::uint64_t bare = 0;  // bytes of further tags that had no record behind them
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
  for (const PartRead& part : parts) {
    if (part.name == name && &part != found.last && part.records == 0) found.bare += part.end - part.begin;
  }
  return found;
}

KeptList kept_list(const char* title, const char* key, const vtrfile::RecordCount& before,
                   const vtrfile::RecordCount& after, bool whole) {
  KeptList list{title, key, before.announced, std::min(after.expected(), before.announced), 0, after.empty};
  list.surplus = after.used - list.kept;
  // The number that stands in front of a list may be behind the place where reading stopped.
  if (!whole && list.announced == 0 && list.surplus == 0) list.announced.reset();
  return list;
}

bool has_fewer(const KeptList& list) { return list.announced && list.kept < *list.announced; }

class Accountant {
 public:
  Accountant(const DocumentSlots& before, const DocumentSlots& after, const vtrfile::FileRead& read)
      : before_(before), after_(after), read_(read), complete_(find(read.parts, vtrfile::kEndTag).last != nullptr) {}

  KeptPart header() const {
    const PartRead& header = read_.parts.front();
    return {header.name, header.whole ? Fate::kWhole : Fate::kPartlyRead, header.end, header.end};
  }

  KeptPart section(std::string_view name, std::uint64_t written) const {
    const Found found = find(read_.parts, name);
    if (!found.last) {
      return {name, !read_.gaps.empty() ? Fate::kNotFound : complete_ ? Fate::kAbsent : Fate::kNotReached};
    }
    KeptPart part{.name = name, .read = found.read, .lists = lists(name, found.last->whole)};
    part.fate = fate(part, found);
    std::uint64_t lost_texts = 0;
    for (const PartRead& met : read_.parts) {
      if (met.name == name && met.tag_texts != last_tag_texts()) lost_texts += met.tag_texts.size();
    }
    part.tag_texts_kept = lost_texts == 0;
    part.kept = kept(part, found, written);
    part.kept -= std::min(part.kept, lost_texts);
    return part;
  }

 private:
  vtrfile::TagTexts last_tag_texts() const {
    const auto& tag = *before_.SectionTag;
    return {tag.Text1.bytes(), tag.Text2.bytes()};
  }

  std::uint64_t kept(const KeptPart& part, const Found& found, std::uint64_t written) const {
    // A record that was emptied as a whole is none that was kept; of the two with several lists the rest stays.
    const bool emptied = part.fate == Fate::kEmptied && part.name != kSchema && part.name != kHidden;
    if (emptied || part.fate == Fate::kNotCarried) return 0;
    const std::uint64_t tag = found.last->content - found.last->begin;
    return found.bare + tag + (found.last->records > 0 ? std::min(found.last->end - found.last->record, written) : 0);
  }

  Fate fate(const KeptPart& part, const Found& found) const {
    if (found.last->carried == Carried::kNone) return Fate::kNotCarried;
    Fate fate = std::ranges::any_of(part.lists, has_fewer) ? Fate::kFewer : Fate::kWhole;
    if (found.last->carried == Carried::kPart) fate = Fate::kLeftBehind;
    if (found.records > 1) fate = Fate::kReplaced;
    const auto met = [&](ListTest test) {
      return std::ranges::find(part.lists, test, &KeptList::test) != part.lists.end();
    };
    if (met(ListTest::kEmptied)) return Fate::kEmptied;
    if (met(ListTest::kKept)) fate = Fate::kUnsound;
    return found.last->whole ? fate : Fate::kPartlyRead;
  }

  ListTest test(const vtrfile::DocumentList& list) const {
    if (list.recount(before_).ok) return ListTest::kPassed;
    return list.recount(after_).ok ? ListTest::kEmptied : ListTest::kKept;
  }

  std::vector<KeptList> lists(std::string_view name, bool whole) const {
    std::vector<KeptList> lists;
    for (const vtrfile::DocumentList& list : vtrfile::document_lists()) {
      if (list.section != name) continue;
      const std::size_t first = lists.size();
      if (list.id == vtrfile::ListId::kDataSend) {
        const auto &before = *before_.DataSend, &after = *after_.DataSend;
        lists.push_back(kept_list("Definitions", "definitions", vtrfile::definition_records(before),
                                  vtrfile::definition_records(after), whole));
        lists.push_back(kept_list("Nodes", "nodes", list.records(before_), list.records(after_), whole));
      } else {
        lists.push_back(kept_list(list.title, list.key, list.records(before_), list.records(after_), whole));
      }
      for (std::size_t at = first; at < lists.size(); ++at) lists[at].test = test(list);
    }
    return lists;
  }

  const DocumentSlots& before_;
  const DocumentSlots& after_;
  const vtrfile::FileRead& read_;
  bool complete_;
};

// Whether bytes count as kept of which some may not be in the new file.
bool counts_too_much(const KeptPart& part) {
  return part.kept > 0 &&
         (part.fate == Fate::kPartlyRead || part.fate == Fate::kEmptied || part.fate == Fate::kLeftBehind);
}

}  // namespace

FateText text_of(Fate fate) {
  switch (fate) {
    case Fate::kWhole:
      return {"whole", "whole"};
    case Fate::kAbsent:
      return {"not in the file", "absent"};
    case Fate::kNotFound:
      return {"not found", "notFound"};
    case Fate::kPartlyRead:
      return {"partly read", "partlyRead"};
    case Fate::kEmptied:
      return {"emptied, failed its test", "emptied"};
    case Fate::kUnsound:
      return {"kept, failed its test", "unsound"};
    case Fate::kReplaced:
      return {"more than one, the last kept", "replaced"};
    case Fate::kLeftBehind:
      return {"not all could be carried over", "leftBehind"};
    case Fate::kNotCarried:
      return {"read, but not carried over", "notCarriedOver"};
    case Fate::kFewer:
      return {"fewer records than announced", "fewerThanAnnounced"};
    case Fate::kNotReached:
      return {"never reached", "notReached"};
  }
  return {};
}

RecoveryAccount account_for_recovery(const DocumentSlots& before, const DocumentSlots& after,
                                     const vtrfile::FileRead& read, const std::vector<std::uint64_t>& written) {
  const Accountant accountant(before, after, read);
  RecoveryAccount account{.parts = {accountant.header()}, .bytes = read.bytes};
  std::size_t number = 0;
  vtrfile::for_each_section(
      [&](const auto& section) { account.parts.push_back(accountant.section(section.tag, written.at(number++))); });

  const Found end = find(read.parts, vtrfile::kEndTag);
  account.kept = end.read;
  if (end.last && end.last->end < read.bytes) account.behind_end = read.bytes - end.last->end;
  for (const KeptPart& part : account.parts) account.kept += part.kept;
  account.kept_at_most = std::ranges::any_of(account.parts, counts_too_much);
  account.nothing_lost = end.last && account.kept + account.behind_end == account.bytes &&
                         std::ranges::all_of(account.parts, [](const KeptPart& part) {
                           return part.tag_texts_kept && (part.fate == Fate::kWhole || part.fate == Fate::kAbsent);
                         });
  return account;
}

}  // namespace trvtrout::host
