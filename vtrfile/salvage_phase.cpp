#include <algorithm>
#include <cmath>

#include "vtrfile/salvage_run.h"

// Step 4: whether the items that were found stand where they seem to. Where zeros stand around an item, it can be read
// a few bytes off, and the items behind it with it.
namespace trvtrout::vtrfile {
namespace {

using Place = const unsigned char*;
using Form = Layout::Form;

// So many bytes an item may be read off.
constexpr std::ptrdiff_t kMostOff = 64;
// So many bytes of an item may have been taken for what stands in front of it.
constexpr std::ptrdiff_t kMostOverlap = 256;
// So many items of each of two chains are compared.
constexpr std::size_t kCompared = 4;
// So much an item may be unlike the others.
constexpr std::uint32_t kMostStrange = 1;

bool is_zero(Place at, std::uint32_t size) {
  return std::all_of(at, at + size, [](unsigned char byte) { return byte == 0; });
}

// A number that stands a byte or two off.
bool looks_shifted(const Layout::Step& step, Place at) {
  if (step.form == Form::kFloat) {
    const float value = std::abs(load<float>(at));
    return value != 0 && !(value > 1e-6F && value < 1e12F);
  }
  return at[0] == 0 && !is_zero(at, step.size);
}

}  // namespace

const Layout& SalvageRun::item_layout(const Resumption& found) const {
  const Layout* record = nullptr;
  if (found.section != TagPlace::kEnd) {
    record = sections_[static_cast<std::size_t>(found.section)].layout;
  } else if (found.new_item) {
    const Open& around = open_[found.level - 1];
    record = around.layout->steps[around.step].item;
  } else {
    record = open_[found.level].layout;
  }
  return *record->steps[found.step].item;
}

// Where the items stand that follow one another from `at` on, and where the last of them ends.
std::vector<Place> SalvageRun::chain(const Layout& item, Place at, Place limit) {
  std::vector<Place> places = {at};
  while (places.size() <= kCompared) {
    Findings found;
    at = walk_.used_item(item, at, limit, found);
    if (!at) break;
    places.push_back(at);
  }
  return places;
}

// How little an item is like another one of its kind, or like what most items are.
std::uint32_t SalvageRun::strangeness(const Layout& item, Place at, Place like) {
  std::uint32_t strange = 0;
  // What stands behind a list that an item has can be far away.
  const std::uint32_t behind = std::min(item.size(), item.list_from(0) + 1);
  for (std::uint32_t step = 0; at && step < behind; ++step) {
    const Layout::Step& value = item.steps[step];
    const Place one = like, other = at;
    Findings in_one, in_other;
    if (value.form == Form::kList) {
      if (like && load<std::uint16_t>(one) != load<std::uint16_t>(other)) ++strange;
      break;
    }
    at = walk_.steps(item, step, step + 1, at, end_, in_other);
    if (like) like = walk_.steps(item, step, step + 1, like, end_, in_one);
    if (!at) break;
    switch (value.form) {
      case Form::kText:
        if (like ? (in_one.texts > 0) != (in_other.texts > 0) : step == item.label && in_other.texts == 0) ++strange;
        break;
      case Form::kVariants:
        if (in_other.variants > in_one.variants) strange += in_other.variants - in_one.variants;
        break;
      case Form::kInteger:
      case Form::kFloat:
        if (looks_shifted(value, other) && !(like && looks_shifted(value, one))) ++strange;
        break;
      case Form::kRaw:
        if (like && is_zero(one, value.size) != is_zero(other, value.size)) ++strange;
        break;
      case Form::kFlag:
        if (load<std::int16_t>(other) == 1 && !(like && load<std::int16_t>(one) == 1)) ++strange;
        break;
      case Form::kList:
      case Form::kBytes:
        break;
    }
  }
  return strange;
}

// The same kind of place at `at`, if enough speaks for it.
std::optional<SalvageRun::Resumption> SalvageRun::same_at(const Resumption& found, Place at) {
  std::optional<Resumption> other;
  try_place(at, other);
  if (!other || !other->evidence.enough() || other->where != found.where || other->level != found.level ||
      other->step != found.step || other->new_item != found.new_item || other->section != found.section) {
    return {};
  }
  return other;
}

// Of the places in a run of zeros the one behind which there are fewest unused slots: these are zeros, too.
SalvageRun::Resumption SalvageRun::behind_zeros(Resumption found) {
  for (Place at = found.at; at < limit_ && *at == 0 && at - found.at < kMostOff && found.evidence.unused > 0;) {
    const auto other = same_at(found, ++at);
    if (other && other->evidence.exact == found.evidence.exact && other->evidence.unused < found.evidence.unused) {
      found = *other;
    }
  }
  return found;
}

// Of all chains around the place the one that is least strange; of two that are alike what they have in common, and
// nothing when that is nothing.
std::optional<SalvageRun::Resumption> SalvageRun::settle(Resumption found) {
  if (found.where == Where::kBehindList) return behind_zeros(found);
  if (found.where != Where::kItem) return found;
  if (found.section == TagPlace::kEnd && found.level == 0 && found.evidence.exact) {
    // The items of another section whose tag is struck may be no different from those of this one.
    std::optional<Resumption> other;
    try_struck_sections(found.at, 1, other);
    if (other) return {};
  }
  const Layout& item = item_layout(found);
  const Place limit = found.section == TagPlace::kEnd ? limit_ : end_;
  const auto known = known_.find(&item);
  const Open* record = found.section == TagPlace::kEnd && !found.new_item ? &open_[found.level] : nullptr;
  Place like = record && record->in_list && record->step == found.step ? record->lists.back().last : nullptr;
  if (!like && known != known_.end()) like = known->second;
  const auto strange = [&](const std::vector<Place>& places, std::size_t count) {
    std::uint32_t sum = 0;
    for (std::size_t place = 0; place < count; ++place) sum += strangeness(item, places[place], like);
    return sum;
  };
  std::vector<Place> main = chain(item, found.at, limit);
  Place certain = found.at;
  const Place first = found.at - std::min(found.at - at_, kMostOff);
  const Place last = found.at + std::min(main.back() - found.at, kMostOff);
  for (Place at = first; at < last; ++at) {
    if (std::ranges::find(main, at) != main.end()) continue;
    const std::vector<Place> other = chain(item, at, limit);
    if (other.size() < 2) continue;
    // Where both go on alike.
    const auto both = std::ranges::find_first_of(main, other);
    const bool meet = both != main.end();
    if (!meet && other.size() < main.size()) continue;
    const std::size_t in_main = static_cast<std::size_t>(both - main.begin()) - (meet ? 0 : 1);
    const std::size_t in_other = meet ? static_cast<std::size_t>(std::ranges::find(other, *both) - other.begin())
                                      : std::min(other.size(), main.size()) - 1;
    const std::uint32_t of_main = strange(main, in_main), of_other = strange(other, in_other);
    // Of two that are alike the one that explains more.
    if (of_main < of_other || (of_main == of_other && meet && in_main == in_other && found.at < at)) continue;
    if (of_main == of_other) {
      if (!meet) return {};
      certain = std::max(certain, *both);
      continue;
    }
    if (auto better = same_at(found, at)) {
      found = *better;
      main = other;
      certain = std::max(certain, at);
    } else {
      if (!meet) return {};
      certain = std::max(certain, *both);
    }
  }
  if (certain == found.at) return found;
  return same_at(found, certain);
}

// Gives back the last items of a list when they are far stranger than those in front: what follows a list that the
// damage has cut may look like its items.
void SalvageRun::give_back_strange() {
  if (in_header_ || open_.empty() || open_.back().lists.empty()) return;
  const Open& record = open_.back();
  const OpenList& list = record.lists.back();
  const Layout& item = *record.layout->steps[list.step].item;
  if (record.step == record.layout->size() || item.has_lists) return;
  const auto known = known_.find(&item);
  if (list.recent.empty() || known == known_.end()) return;
  std::vector<std::uint32_t> strange;
  for (const Taken& taken : list.recent) strange.push_back(strangeness(item, taken.place, known->second));
  std::size_t kept = strange.size();
  while (kept > 0) {
    const auto others = std::span(strange).first(kept - 1);
    const std::uint32_t most = others.empty() ? 0 : *std::ranges::max_element(others);
    if (strange[kept - 1] <= 2 * most + kMostStrange) break;
    --kept;
  }
  if (kept == strange.size() || list.recent[kept].place < firm_) return;
  give_back(open_.size() - 1, list.recent[kept], strange.size() - kept);
}

// Whether the walk was off before it broke off: items of an open list, or an open one itself, overlap others that lead
// further. Goes back to where these begin.
bool SalvageRun::step_back() {
  if (in_header_) return false;
  for (std::size_t level = open_.size(); level-- > 0;) {
    const Open& record = open_[level];
    if (record.lists.empty()) continue;
    const OpenList& list = record.lists.back();
    const Layout& item = *record.layout->steps[list.step].item;
    const bool innermost = level + 1 == open_.size();
    std::vector<Taken> taken;
    if (innermost) taken = list.recent;
    if (!innermost && !list.recent.empty()) taken.push_back(list.recent.back());
    if (level + 1 < open_.size()) taken.push_back({open_[level + 1].begin, open_[level + 1].out});
    taken.push_back({at_, new_.size()});
    for (std::size_t number = 1; number < taken.size(); ++number) {
      const Place near = taken[number].place;
      const std::ptrdiff_t most_off = near == at_ ? kMostOverlap : kMostOff;
      for (Place at = near - std::min(near - taken[number - 1].place - 1, most_off);
           at < std::min(at_, near + kMostOff); ++at) {
        if (at == near) continue;
        if (number + 1 < taken.size() && at >= taken[number + 1].place) break;
        Findings found;
        if (!walk_.used_item(item, at, limit_, found)) continue;
        std::vector<Spot> spots = spots_to(level);
        spots.back() = {record.layout, list.step, true, true, 0};
        const Evidence evidence = sight_->look(std::move(spots), at, limit_);
        if (!evidence.enough() || evidence.reached <= at_) continue;
        const std::size_t from = at < near ? number - 1 : number;
        if (taken[from].place < firm_) continue;
        std::uint32_t of_taken = 0, of_other = 0;
        const auto known = known_.find(&item);
        const Place like = from > 0 ? taken[from - 1].place : known == known_.end() ? nullptr : known->second;
        of_taken = strangeness(item, taken[from].place, like);
        of_other = strangeness(item, at, like);
        const bool far = near - at > kMostOff;
        const bool certain = !far && evidence.exact && evidence.items >= Evidence::kSomeItems;
        if (of_other + (far ? 1 : 0) > of_taken && !certain) continue;
        give_back(level, taken[from], taken.size() - 1 - from);
        return true;
      }
    }
  }
  return false;
}

}  // namespace trvtrout::vtrfile
