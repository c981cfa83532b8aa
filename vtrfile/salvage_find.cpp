#include <algorithm>

#include "vtrfile/salvage_run.h"

// Step 4: where reading goes on behind a break.
namespace trvtrout::vtrfile {
namespace {

using Place = const unsigned char*;

// So far behind a section's end the record of the next one may begin when its tag is struck.
constexpr std::ptrdiff_t kLongestTag = 64;
// So often it may go on at the place at which it broke off: behind a list, in one around it.
constexpr int kMostStalls = 4;
// An item with so many texts isn't read by chance.
constexpr std::uint32_t kManyTexts = 4;
// What stands behind the name of a tag as it's written.
constexpr unsigned char kPlainTagEnd[] = {1, 0, 0, 0, 0, 0};

// How much of the end of a tag's name stands in front of `content`, behind which a record may begin.
std::size_t name_left(std::string_view name, Place begin, Place content) {
  if (content - begin < std::ptrdiff_t{sizeof kPlainTagEnd}) return 0;
  Place at = content - sizeof kPlainTagEnd;
  if (!std::equal(at, content, kPlainTagEnd)) return 0;
  std::size_t same = 0;
  while (same < name.size() && at > begin && static_cast<char>(*--at) == name[name.size() - 1 - same]) ++same;
  return same;
}

}  // namespace

std::optional<SalvageRun::Resumption> SalvageRun::find() {
  const Place tag = sight_->next_tag(at_);
  // One that some items speak for, but neither its end nor a long list of them. A better one among them takes its
  // place.
  std::optional<Resumption> possible;
  for (Place at = at_ + (stalls_ > kMostStalls ? 1 : 0); at < tag && !worn_out(); ++at) {
    if (possible && at > possible->evidence.reached) return possible;
    std::optional<Resumption> best;
    try_place(at, best);
    if (!best) continue;
    const bool better = !possible || best->evidence.better_than(possible->evidence);
    if (better && best->evidence.enough()) {
      if (auto settled = settle(*best)) return settled;
      continue;
    }
    if (!possible) possible = best;
  }
  if (possible || tag == end_) return possible;
  return Resumption{tag, Where::kTag};
}

void SalvageRun::try_place(Place at, std::optional<Resumption>& best) {
  if (!in_header_) {
    for (std::size_t level = open_.size(); level-- > 0;) {
      const Open& record = open_[level];
      const bool top = level + 1 == open_.size();
      try_record(record, {at, Where::kItem, level}, at == (top ? at_ : open_[level + 1].begin), best);
      if (!record.in_list || !record.layout->steps[record.step].item->has_lists) continue;
      // An item of the list that has lost its beginning.
      const Open item{record.layout->steps[record.step].item, at, 0, {}};
      std::optional<Resumption> inside;
      try_record(item, {.at = at, .where = Where::kItem, .level = level + 1, .new_item = true}, false, inside);
      if (!inside || inside->evidence.items < Evidence::kSomeItems || inside->evidence.list_items < 2) continue;
      if (!best || inside->evidence.better_than(best->evidence)) best = inside;
    }
  }
  if (!best) try_sections(at, best);
  if (!best) try_struck_sections(at, 2, best);
}

// A section of which the tag is struck, and the beginning of its record.
void SalvageRun::try_struck_sections(Place at, std::uint32_t least_items, std::optional<Resumption>& best) {
  for (std::size_t number = 0; number < sections_.size(); ++number) {
    if (is_elsewhere(number)) continue;
    const Open record{sections_[number].layout, at, 0, {}};
    std::optional<Resumption> found;
    try_record(record, {at, Where::kItem, 0, 0, static_cast<int>(number)}, false, found);
    // Any record can break off where a file was cut.
    if (found && found->evidence.exact && found->evidence.reached != end_ && found->evidence.items >= least_items)
      best = found;
  }
}

bool SalvageRun::is_elsewhere(std::size_t section) {
  const auto is_this = [&](const TagPlace& place) { return place.section == static_cast<int>(section); };
  return std::ranges::any_of(sight_->tags(), is_this) ||
         std::ranges::find(result_.sections, sections_[section].tag, &SalvagedSection::tag) != result_.sections.end();
}

std::vector<Spot> SalvageRun::spots_to(std::size_t level) const {
  std::vector<Spot> spots;
  for (std::size_t place = 0; place <= level; ++place) {
    const Open& record = open_[place];
    // The record that is open in the list isn't counted among those to come any more.
    const bool struck = record.in_list && !record.lists.empty() && record.lists.back().struck;
    Spot spot{record.layout, record.step, record.in_list, struck || place < level, record.left};
    spots.push_back(spot);
  }
  return spots;
}

void SalvageRun::consider(Resumption resumption, std::vector<Spot> spots, std::optional<Resumption>& best) {
  Place at = resumption.at;
  if (resumption.where == Where::kList) {
    const Spot& spot = spots.back();
    at = walk_.descriptor(at, limit_, spot.layout->steps[spot.step].item->least_bytes).items;
  }
  resumption.evidence = sight_->look(std::move(spots), at, limit_);
  const Evidence& evidence = resumption.evidence;
  if (!evidence.enough() && evidence.list_items < Evidence::kSomeItems) return;
  if (!resumption.evidence.some()) return;
  if (!best || resumption.evidence.better_than(best->evidence)) best = resumption;
}

// Whether the numbers of the lists in an item are such as their lists can have.
bool SalvageRun::numbers_agree(const Layout& item, Place at) {
  for (std::uint32_t step = 0; step < item.size(); ++step) {
    if (item.steps[step].form == Layout::Form::kList) {
      const auto items = walk_.descriptor(at, limit_, item.steps[step].item->least_bytes);
      if (!number_agrees(item, step, at, items.count)) return false;
    }
    Findings found;
    at = walk_.steps(item, step, step + 1, at, limit_, found);
  }
  return true;
}

// Whether the number of used items that stands in front of the descriptor at `at`, if it does, isn't above `items`.
bool SalvageRun::number_agrees(const Layout& record, std::uint32_t list, Place at, std::uint32_t items) const {
  using Form = Layout::Form;
  for (std::uint32_t step = list; step-- > 0;) {
    const Layout::Step& number = record.steps[step];
    const bool fixed = number.form == Form::kInteger || number.form == Form::kRaw || number.form == Form::kFloat;
    if (!fixed || at - begin_ < std::ptrdiff_t{number.size}) return true;
    at -= number.size;
    if (number.role != Layout::Role::kCount || number.list != list) continue;
    const std::int64_t value = number.size == 2 ? load<std::int16_t>(at) : load<std::int32_t>(at);
    return value >= 0 && value <= std::int64_t{items};
  }
  return true;
}

// `fails_here`: what would come next in the record, and doesn't.
void SalvageRun::try_record(const Open& record, const Resumption& like, bool fails_here,
                            std::optional<Resumption>& best) {
  const Layout& layout = *record.layout;
  const Place at = like.at;
  const bool open = like.section == TagPlace::kEnd && !like.new_item;
  const bool top = open && like.level + 1 == open_.size();
  const auto try_spot = [&](Where where, std::uint32_t step, Spot spot) {
    std::vector<Spot> spots;
    if (like.section == TagPlace::kEnd && like.level + (open ? 1 : 0) > 0)
      spots = spots_to(open ? like.level : like.level - 1);
    if (!open) spots.emplace_back();
    spots.back() = spot;
    Resumption resumption = like;
    resumption.where = where;
    resumption.step = step;
    consider(resumption, std::move(spots), best);
  };

  // The list in which it breaks off, or behind which.
  std::uint32_t current = Layout::kNoStep;
  if (record.in_list) current = record.step;
  if (!record.in_list && !record.lists.empty() && record.lists.back().behind == new_.size()) {
    current = record.lists.back().step;
  }
  // The one that should have come next, if its descriptor is struck.
  const std::uint32_t next_list = layout.list_from(record.in_list ? record.step + 1 : record.step);
  const auto try_items = [&](std::uint32_t step, std::uint32_t left) {
    Findings found;
    const Layout& item = *layout.steps[step].item;
    if (!walk_.used_item(item, at, limit_, found)) return;
    if (item.has_lists && !numbers_agree(item, at)) return;
    std::optional<Resumption> found_here;
    std::swap(found_here, best);
    try_spot(Where::kItem, step, {&layout, step, true, true, left});
    std::swap(found_here, best);
    if (!found_here) return;
    // A single small item that happens to end where a list does is no evidence, unless it's the one that is still to
    // come.
    const std::uint32_t items = found_here->evidence.list_items;
    const bool the_last = record.in_list && left == 1;
    const bool single = items == 1 || (found_here->evidence.exact && found_here->evidence.items == 1);
    if (single && !the_last && found.texts < kManyTexts) return;
    const bool begun = record.in_list || (!record.lists.empty() && record.lists.back().step == step);
    if (begun && items != Evidence::kNoEnd && !record.lists.back().has_room_for(items)) return;
    // A list of which not even the beginning is there.
    if (!begun && !found_here->evidence.enough()) return;
    if (!best || found_here->evidence.better_than(best->evidence)) best = found_here;
  };
  if (current != Layout::kNoStep) {
    if (!(fails_here && record.in_list)) {
      try_items(current, record.left - (record.in_list && top && record.left > 0 ? 1 : 0));
    }
    const bool same = fails_here && !record.in_list && record.step == current + 1;
    if (!same) try_spot(Where::kBehindList, current, {&layout, current + 1});
  }
  if (!record.in_list && next_list < layout.size()) try_items(next_list, 0);
  for (std::uint32_t list = next_list; list < layout.size(); list = layout.list_from(list + 1)) {
    const auto items = walk_.descriptor(at, limit_, layout.steps[list].item->least_bytes);
    if (!items.items) break;
    if (items.count == 0 || !number_agrees(layout, list, at, items.count)) continue;
    std::optional<Resumption> found_here;
    std::swap(found_here, best);
    try_spot(Where::kList, list, {&layout, list, true, false, items.count});
    std::swap(found_here, best);
    // A single item behind what may be a descriptor is no evidence.
    if (!found_here || (items.count == 1 && found_here->evidence.items < Evidence::kSomeItems)) continue;
    if (!best || found_here->evidence.better_than(best->evidence)) best = found_here;
  }
  std::uint32_t last = next_list;
  while (last < layout.size() && layout.list_from(last + 1) < layout.size()) last = layout.list_from(last + 1);
  if (open && last + 1 < layout.size()) try_spot(Where::kBehindList, last, {&layout, last + 1});
}

void SalvageRun::try_sections(Place at, std::optional<Resumption>& best) {
  const bool near = open_.empty() && at - at_ <= kLongestTag;
  int most = 0;
  for (std::size_t number = 0; number < sections_.size(); ++number) {
    const auto [tag, layout] = sections_[number];
    const std::size_t left = name_left(tag, begin_, at);
    if (left == 0 && !near) continue;
    const bool elsewhere = is_elsewhere(number);
    if (left == 0 && elsewhere) continue;
    const Evidence evidence = sight_->look({{layout}}, at, end_);
    if (!evidence.some() || (left < 2 && !evidence.exact)) continue;
    const bool next_in_order =
        !result_.sections.empty() && number > 0 && result_.sections.back().tag == sections_[number - 1].tag;
    const int score =
        8 * static_cast<int>(left) + (elsewhere ? 0 : 4) + (next_in_order ? 2 : 0) + (evidence.items > 0 ? 1 : 0);
    if (score <= most) continue;
    most = score;
    best = Resumption{at, Where::kRecord, 0, 0, static_cast<int>(number), evidence};
  }
}

}  // namespace trvtrout::vtrfile
