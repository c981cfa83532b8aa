#include "vtrfile/salvage_run.h"

#include <algorithm>

#include "vtrfile/format_version.h"
#include "vtrfile/sections.h"

namespace trvtrout::vtrfile {
namespace {

using Role = Layout::Role;

// The section whose record differs between the formats.
constexpr int kSchemaSection = 0;

// What a run may cost: steps for each byte of the file, and some for a small one.
constexpr std::uint64_t kWorkPerByte = 24, kWork = 4 << 20;

// So many items of a list can be given back when it turns out that they aren't any.
constexpr std::size_t kRecent = 8;

const Layout& header_layout(std::string_view version) { return layout_of(header_of(DocumentSlots()).type(), version); }

}  // namespace

SalvageRun::SalvageRun(const Image& image, std::span<const FileRange> unreadable)
    : image_(image),
      begin_(image.begin()),
      end_(image.end()),
      unreadable_([&] {
        std::vector<ByteRange> ranges;
        for (const FileRange& range : unreadable) ranges.push_back({begin_ + range.begin, begin_ + range.end});
        return ranges;
      }()),
      walk_(begin_, unreadable_),
      allowed_work_(kWork + kWorkPerByte * image.size()),
      at_(begin_),
      limit_(end_),
      firm_(begin_) {
  result_.unreadable.assign(unreadable.begin(), unreadable.end());
}

std::optional<Salvaged> SalvageRun::run() {
  choose_version();
  read_header();
  for (;;) {
    if (open_.empty()) {
      if (!next_section()) break;
    } else if (!advance() && !resume()) {
      break;
    }
  }
  return finish();
}

void SalvageRun::choose_version() {
  const Layout& header = header_layout(kCurrentFormatVersion.text());
  Findings found;
  const Place at = walk_.steps(header, 0, kVersionStep, begin_, end_, found);
  Findings of_version;
  if (at && walk_.steps(header, kVersionStep, kVersionStep + 1, at, end_, of_version) && of_version.sound()) {
    result_.version = Text(at).bytes();
  }
  if (classify(result_.version) == FormatClass::kUnsupported) guess_version();
  sections_ = section_layouts(result_.version);
  sight_.emplace(image_, walk_, sections_);
}

void SalvageRun::guess_version() {
  result_.version_guessed = true;
  result_.version = kCurrentFormatVersion.text();
  Evidence most;
  for (const FormatVersion& version : {kCurrentFormatVersion, kOldFormatVersion}) {
    sections_ = section_layouts(version.text());
    sight_.emplace(image_, walk_, sections_);
    for (const TagPlace& tag : sight_->tags()) {
      if (tag.section != kSchemaSection) continue;
      const Evidence evidence = sight_->look({{sections_[0].layout}}, tag.content, end_);
      if (!evidence.better_than(most)) continue;
      most = evidence;
      result_.version = version.text();
    }
  }
}

void SalvageRun::read_header() {
  const Layout& header = header_layout(result_.version);
  open_.push_back({&header, at_, 0, "Header"});
  in_header_ = true;
  Findings found;
  const Place next = walk_.item(header, at_, end_, found);
  result_.header_whole = next && (found.sound() || sight_->is_border(next));
  if (result_.header_whole) {
    take_steps(open_.back(), header.size());
    open_.clear();
    result_.header_end = offset(at_);
  } else if (!resume()) {
    open_.clear();
    at_ = end_;
  }
  in_header_ = false;
}

bool SalvageRun::next_section() {
  const auto tag = sight_->tag_at(at_);
  if (tag && tag->section == TagPlace::kEnd) {
    result_.end_found = true;
    new_.copy(at_, tag->content);
    at_ = tag->content;
    return false;
  }
  if (tag && enter_section(*tag)) return true;
  result_.end_found = false;
  return at_ != end_ && resume();
}

bool SalvageRun::is_whole(const TagPlace& tag, Place& end) {
  end = tag.content;
  const Layout& layout = *sections_[static_cast<std::size_t>(tag.section)].layout;
  for (int record = 0; record < tag.count; ++record) {
    Findings found;
    const Place next = walk_.item(layout, end, end_, found);
    if (!next || (!unreadable_.empty() && found.odd)) return false;
    end = next;
  }
  return sight_->is_border(end);
}

bool SalvageRun::enter_section(const TagPlace& tag) {
  TagPlace taken = tag;
  Place end = nullptr;
  bool whole = is_whole(taken, end);
  if (!whole && tag.count != 1) {
    taken.count = 1;
    taken.kept = false;
    whole = is_whole(taken, end);
  }
  if (!whole && !tag.plain) {
    // The texts may be what was struck: all that is written are empty.
    const std::size_t name = 2 + sections_[static_cast<std::size_t>(tag.section)].tag.size();
    constexpr std::size_t kCountAndTexts = 6;
    TagPlace plain = taken;
    plain.content = tag.at + std::min(name + kCountAndTexts, static_cast<std::size_t>(end_ - tag.at));
    whole = is_whole(plain, end);
    plain.kept = false;
    // Struck texts may seem to lead far behind the section.
    if (whole || taken.content > sight_->next_tag(plain.content)) taken = plain;
  }
  open_section(tag.section, taken);
  if (!whole) {
    limit_ = sight_->next_tag(at_);
    return true;
  }
  new_.copy(taken.content, end);
  at_ = end;
  open_.clear();
  end_section(true);
  return true;
}

void SalvageRun::open_section(int section, const TagPlace& tag) {
  const SectionLayout& found = sections_[static_cast<std::size_t>(section)];
  section_out_ = new_.size();
  const Place name_end = tag.at ? tag.at + 2 + found.tag.size() : nullptr;
  result_.sections.push_back({.tag = std::string(found.tag),
                              .bytes = {offset(tag.at ? tag.at : tag.content), 0},
                              .tag_struck = !tag.at,
                              .behind_damage = broken_});
  if (tag.at) {
    new_.copy(tag.at, name_end);
  } else {
    new_.add_text(found.tag);
  }
  if (tag.at && tag.kept) {
    new_.copy(name_end, tag.content);
  } else {
    new_.add_number(std::int16_t{1});
    new_.add_text("");
    new_.add_text("");
  }
  at_ = tag.content;
  open_.push_back({found.layout, at_, new_.size(), std::string(found.tag)});
}

bool SalvageRun::goes_on_behind(Place next) { return sight_->look(spots_to(open_.size() - 1), next, limit_).some(); }

bool SalvageRun::advance() {
  Open& top = open_.back();
  if (top.in_list) return advance_list(top);
  const Layout& layout = *top.layout;
  const std::uint32_t list = layout.list_from(top.step);
  Findings found;
  const Place next = walk_.steps(layout, top.step, list, at_, limit_, found);
  if (!next) return false;
  if (found.odd) {
    const std::uint32_t step = std::exchange(top.step, list);
    const bool goes_on = goes_on_behind(next);
    top.step = step;
    if (!goes_on) return false;
  }
  if (list < layout.size()) {
    const auto items = walk_.descriptor(next, limit_, layout.steps[list].item->least_bytes);
    if (!items.items) return false;
    take_steps(top, list);
    open_list(top, items);
    return true;
  }
  take_steps(top, list);
  if (open_.size() > 1) {
    close_top();
    return true;
  }
  if (!sight_->is_border(at_)) return false;
  set_numbers(top);
  open_.clear();
  end_section(result_.sections.back().losses.empty());
  return true;
}

// Whether a list that has lost items, or got some twice, has another one although it should be at its end.
bool SalvageRun::goes_on_in_list(const Open& top) {
  Findings found;
  const Layout& item = *top.layout->steps[top.step].item;
  if (!walk_.used_item(item, at_, limit_, found)) return false;
  std::vector<Spot> spots = spots_to(open_.size() - 1);
  const bool more = sight_->look(spots, at_, limit_).some();
  spots.back().in_list = false;
  ++spots.back().step;
  return more && !sight_->look(std::move(spots), at_, limit_).some();
}

bool SalvageRun::advance_list(Open& top) {
  if (top.left == 0 && top.lists.back().struck && goes_on_in_list(top)) top.left = 1;
  if (top.left == 0) {
    top.lists.back().behind = new_.size();
    top.in_list = false;
    ++top.step;
    return true;
  }
  const Layout::Step& list = top.layout->steps[top.step];
  Findings found;
  const Place next = walk_.item(*list.item, at_, limit_, found);
  const std::uint32_t left = top.left--;
  if (next && (found.plausible(*list.item) || goes_on_behind(next))) {
    take_item(top, next, found);
    return true;
  }
  if (!list.item->has_lists) {
    top.left = left;
    return false;
  }
  const std::string number = std::to_string(top.lists.back().announced.value_or(left) - left + 1);
  Open item{list.item, at_, new_.size(), top.path + '/' + list.path + '[' + number + ']'};
  open_.push_back(std::move(item));
  return true;
}

void SalvageRun::take_item(Open& top, Place next, const Findings& found) {
  count_item(top, at_, new_.size(), found.has_key, found.texts > 0);
  new_.copy(at_, next);
  at_ = next;
}

// `item`: one more of the list in which `top` stands; `out`: where it stands in the new file.
void SalvageRun::count_item(Open& top, Place item, std::size_t out, bool has_key, bool filled) {
  OpenList& list = top.lists.back();
  const Layout& layout = *top.layout->steps[list.step].item;
  if (!filled && list.filled == list.kept) {
    list.empty_at = out;
    list.empty = item;
  }
  ++list.kept;
  if (list.recent.size() == kRecent) list.recent.erase(list.recent.begin());
  list.recent.push_back({item, out});
  if (filled) list.filled = list.kept;
  if (!has_key && layout.has_key) return;
  list.used = list.kept;
  list.last = item;
  if (filled) known_.try_emplace(&layout, item);
}

void SalvageRun::take_steps(Open& top, std::uint32_t behind) {
  for (; top.step < behind; ++top.step) {
    Findings found;
    const Place next = walk_.steps(*top.layout, top.step, top.step + 1, at_, end_, found);
    if (top.layout->steps[top.step].role != Role::kNone) top.numbers.emplace_back(top.step, new_.size());
    top.has_key = top.has_key || found.has_key;
    top.has_text = top.has_text || found.texts > 0;
    if (in_header_ && top.step == kVersionStep && result_.version_guessed) {
      new_.add_text(result_.version);
    } else {
      new_.copy(at_, next);
    }
    at_ = next;
  }
}

void SalvageRun::open_list(Open& top, const LayoutWalk::Descriptor& items) {
  constexpr std::size_t kBeforeCount = 2;
  top.lists.push_back({top.step, new_.size() + kBeforeCount, items.count});
  new_.copy(at_, items.items);
  at_ = items.items;
  top.in_list = true;
  top.left = items.count;
  // An unallocated list has no number.
  if (!items.allocated) {
    top.lists.pop_back();
    top.in_list = false;
    ++top.step;
  }
}

void SalvageRun::close_top() {
  Open done = std::move(open_.back());
  open_.pop_back();
  set_numbers(done);
  const bool filled =
      done.has_text || std::ranges::any_of(done.lists, [](const OpenList& list) { return list.filled > 0; });
  count_item(open_.back(), done.begin, done.out, done.has_key, filled);
}

}  // namespace trvtrout::vtrfile
