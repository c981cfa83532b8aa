#include <algorithm>

#include "vtrfile/salvage_run.h"

// Step 5: what becomes of the records that a break cuts.
namespace trvtrout::vtrfile {
namespace {

// So far in front of a place the values are looked for that lead to it.
constexpr std::ptrdiff_t kLongestFront = 2048;

}  // namespace

bool SalvageRun::resume() {
  give_back_empty();
  std::optional<Resumption> here;
  try_place(at_, here);
  if (!(here && here->evidence.enough()) && !step_back()) give_back_strange();
  const auto resumption = find();
  broken_ = true;
  if (!resumption) {
    Resumption end{end_, Where::kTag};
    go_on(end);
    return false;
  }
  go_on(*resumption);
  return true;
}

// Items without a text in front of a break are what zeros were taken for, and an open one of which there is no more.
void SalvageRun::give_back_empty() {
  while (!open_.empty()) {
    Open& top = open_.back();
    if (top.in_list) {
      OpenList& list = top.lists.back();
      if (list.filled == list.kept) return;
      new_.shrink(list.empty_at);
      at_ = list.empty;
      top.left += list.kept - list.filled;
      list.kept = list.filled;
      list.used = std::min(list.used, list.kept);
      while (!list.recent.empty() && list.recent.back().out >= new_.size()) list.recent.pop_back();
      return;
    }
    if (open_.size() == 1 || top.has_text || !top.lists.empty()) return;
    new_.shrink(top.out);
    at_ = top.begin;
    open_.pop_back();
    ++open_.back().left;
  }
}

// Gives back so many items of the list that is open at this level, from one on; the open ones among them.
void SalvageRun::give_back(std::size_t level, Taken from, std::size_t items) {
  open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(level) + 1, open_.end());
  Open& record = open_[level];
  OpenList& list = record.lists.back();
  new_.shrink(from.out);
  firm_ = at_;
  at_ = from.place;
  if (!record.in_list) record.step = list.step;
  record.in_list = true;
  record.left += static_cast<std::uint32_t>(items);
  while (!list.recent.empty() && list.recent.back().out >= from.out) {
    list.recent.pop_back();
    --list.kept;
  }
  list.used = std::min(list.used, list.kept);
  list.filled = std::min(list.filled, list.kept);
  list.last = list.recent.empty() ? nullptr : list.recent.back().place;
}

void SalvageRun::go_on(const Resumption& resumption) {
  stalls_ = resumption.at == at_ ? stalls_ + 1 : 0;
  const bool new_section = resumption.section != TagPlace::kEnd;
  if (!in_header_ && !open_.empty()) note_loss(resumption, !new_section && !resumption.new_item);
  if (new_section || resumption.where == Where::kTag) {
    leave_section(resumption);
    if (resumption.where == Where::kTag || resumption.where == Where::kRecord) return;
    note_loss(resumption, true);
  }
  const std::size_t staying = resumption.level + (resumption.new_item ? 0 : 1);
  while (open_.size() > staying) {
    const bool last = open_.size() == staying + 1;
    close_struck(resumption.at, last && resumption.where == Where::kItem);
  }
  if (resumption.new_item) open_item(resumption.at);
  go_on_in(open_.back(), resumption);
}

void SalvageRun::leave_section(const Resumption& resumption) {
  if (!open_.empty()) {
    while (open_.size() > 1) close_struck(resumption.at, false);
    close_struck(resumption.at, true);
  }
  at_ = resumption.at;
  if (resumption.section == TagPlace::kEnd) return;
  open_section(resumption.section, {.content = resumption.at});
  limit_ = sight_->next_tag(at_);
}

void SalvageRun::open_item(Place at) {
  Open& list = open_.back();
  list.lists.back().struck = true;
  if (list.left > 0) --list.left;
  at_ = at;
  Open item{list.layout->steps[list.step].item, at_, new_.size(),
            list.path + '/' + list.layout->steps[list.step].path + "[?]"};
  open_.push_back(std::move(item));
}

void SalvageRun::go_on_in(Open& record, const Resumption& resumption) {
  if (record.in_list) {
    OpenList& list = record.lists.back();
    list.struck = true;
    list.behind = new_.size();
  }
  switch (resumption.where) {
    case Where::kItem:
      go_on_with_item(record, resumption);
      break;
    case Where::kList:
      leave_list(record);
      skip_to(record, resumption.step, resumption.at, true);
      at_ = resumption.at;
      open_list(record, walk_.descriptor(at_, limit_, record.layout->steps[resumption.step].item->least_bytes));
      return;
    default:
      leave_list(record);
      if (!record.lists.empty() && record.lists.back().step == resumption.step) {
        record.lists.back().struck = true;
      } else {
        skip_to(record, resumption.step + 1, resumption.at, false);
      }
      record.step = resumption.step + 1;
      break;
  }
  at_ = resumption.at;
}

void SalvageRun::go_on_with_item(Open& record, const Resumption& resumption) {
  const bool same_list = record.in_list && record.step == resumption.step;
  const bool reopened = !record.in_list && !record.lists.empty() && record.lists.back().step == resumption.step;
  if (!same_list && !reopened) {
    leave_list(record);
    skip_to(record, resumption.step, resumption.at, false);
    new_.add_number(std::uint16_t{1});
    record.lists.push_back({resumption.step, new_.size(), {}});
    new_.add_number(std::uint32_t{0});
    new_.add_number(std::int32_t{1});
  }
  const std::uint32_t left = record.in_list ? record.left : 0;
  const std::uint32_t guess = left > 1 ? left - (open_.size() == resumption.level + 1 ? 1 : 0) : 1;
  record.lists.back().struck = true;
  record.in_list = true;
  record.step = resumption.step;
  record.left = resumption.evidence.list_items != Evidence::kNoEnd ? resumption.evidence.list_items : guess;
}

void SalvageRun::leave_list(Open& record) {
  if (!record.in_list) return;
  record.in_list = false;
  ++record.step;
}

void SalvageRun::close_struck(Place behind, bool ends_there) {
  Open& top = open_.back();
  if (top.in_list) top.lists.back().struck = true;
  leave_list(top);
  skip_to(top, top.layout->size(), behind, ends_there);
  if (open_.size() > 1) {
    const bool kept = top.has_key || std::ranges::any_of(top.lists, [](const OpenList& list) { return list.kept > 0; });
    open_[open_.size() - 2].lists.back().struck = true;
    if (kept) {
      close_top();
    } else {
      new_.shrink(top.out);
      open_.pop_back();
    }
    return;
  }
  const bool section = !in_header_;
  if (in_header_) result_.header_end = offset(at_);
  in_header_ = false;
  if (section) set_numbers(top);
  open_.clear();
  if (section) end_section(false);
}

void SalvageRun::skip_to(Open& record, std::uint32_t step, Place at, bool goes_on_there) {
  take_sound_steps(record, step, at);
  if (goes_on_there && take_exact_steps(record, step, at)) return;
  leave_empty(record, step);
}

void SalvageRun::leave_empty(Open& record, std::uint32_t step) {
  for (; record.step < step; ++record.step) {
    if (record.layout->steps[record.step].role != Layout::Role::kNone) {
      record.numbers.emplace_back(record.step, new_.size());
    }
    if (in_header_ && record.step == kVersionStep && result_.version_guessed) {
      new_.add_text(result_.version);
    } else {
      new_.add_empty(*record.layout, record.step, record.step + 1);
    }
  }
}

void SalvageRun::take_sound_steps(Open& record, std::uint32_t behind, Place limit) {
  // Behind a list that broke off nothing stands where it should.
  if (!record.lists.empty() && record.lists.back().struck) return;
  behind = std::min(behind, record.layout->list_from(record.step));
  while (record.step < behind) {
    Findings found;
    const Place next = walk_.steps(*record.layout, record.step, record.step + 1, at_, limit, found);
    if (!next || found.odd) return;
    take_steps(record, record.step + 1);
  }
}

bool SalvageRun::take_exact_steps(Open& record, std::uint32_t behind, Place at) {
  const Place first = at - std::min(at - at_, kLongestFront);
  for (std::uint32_t step = record.step; step < behind; ++step) {
    for (Place from = first; from < at; ++from) {
      Findings found;
      if (walk_.steps(*record.layout, step, behind, from, at, found) != at || found.odd) continue;
      leave_empty(record, step);
      at_ = from;
      take_steps(record, behind);
      return true;
    }
  }
  return false;
}

void SalvageRun::note_loss(const Resumption& resumption, bool opened) {
  SalvageLoss loss{.list = open_.back().path, .bytes = {offset(at_), offset(resumption.at)}};
  for (const Open& record : open_) {
    if (record.lists.empty()) continue;
    const OpenList& list = record.lists.back();
    const Layout::Step& step = record.layout->steps[list.step];
    loss.list = record.path + '/' + step.path;
    loss.before = list.last ? label_at(*step.item, list.last) : "";
  }
  if (resumption.where == Where::kItem && opened) {
    loss.behind = label_at(*open_[resumption.level].layout->steps[resumption.step].item, resumption.at);
  }
  result_.sections.back().losses.push_back(std::move(loss));
}

std::string SalvageRun::label_at(const Layout& layout, Place at) {
  if (layout.label == Layout::kNoStep) return {};
  Findings found;
  const Place label = walk_.steps(layout, 0, layout.label, at, end_, found);
  return label && end_ - label >= 2 ? std::string(Text(label).bytes()) : std::string();
}

}  // namespace trvtrout::vtrfile
