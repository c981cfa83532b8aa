// How the items of two lists find each other:
//
// 1. Equal items at the beginning and at the end of both lists are partners.
// 2. In between, both lists are walked side by side. Equal items are partners; where two differ, the walk goes on
//    behind them, or behind some items that one list has more, whichever finds more equal ones.
// 3. Of what is left over, items with a key that occurs once in both are partners; of a key that occurs several times,
//    equal items first, then the others in order.
// 4. Of what is left over then, equal items, in order.
// 5. The longest run of partners that stand in the same order in both lists stays; the others have moved.
// 6. Where some have moved and several items have the same content, the walk may have taken one of these for another.
//    Then 3 to 5 are tried with a longest common subsequence in place of the walk, if there is one to be found soon.
// 7. What is left over between the same two of those that stay, and is alike, is a changed item.
//
// Each step is linear in the items that the one before it left, but for sorting them; none compares all with all,
// whatever the items are.
#include "differences/list_pairs.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "differences/common_sequence.h"
#include "differences/likeness.h"
#include "vtrfile/item_keys.h"

namespace trvtrout::differences {
namespace {

using vtrfile::Value;

constexpr std::uint32_t kNone = ListPairs::kNone;
using Places = std::vector<std::uint32_t>;

// An item that is looked for, with what it's known by.
struct Known {
  std::string_view by;
  std::uint32_t place;
  bool operator<(const Known& other) const { return std::tie(by, place) < std::tie(other.by, other.place); }
};

class Pairing {
 public:
  Pairing(Value old_list, Value new_list)
      : old_(old_list),
        new_(new_list),
        old_count_(old_list.elements()),
        new_count_(new_list.elements()),
        by_image_(old_list.type().element->same_in_all_versions && has_images(old_list) && has_images(new_list)),
        key_(key_member(*old_list.type().element)) {}

  ListPairs run() {
    strip_ends();
    forget_pairs();
    walk_side_by_side();
    pair_others();
    if (count_moved() > 0) try_common_order();
    pair_alike();
    return result();
  }

 private:
  static bool has_images(Value list) { return list.elements() == 0 || !list.image_of(0).empty(); }

  static bool same_bytes(std::span<const unsigned char> a, std::span<const unsigned char> b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
  }
  // Of items counted from 0 in the whole lists.
  bool same(std::uint32_t old_place, std::uint32_t new_place) const {
    if (by_image_) {
      const auto one = old_.image_of(old_place), other = new_.image_of(new_place);
      if (!one.empty() && !other.empty()) return same_bytes(one, other);
    }
    return equal(old_.element(old_place), new_.element(new_place));
  }
  // Of items counted from 0 behind those in front.
  bool same_between(std::uint32_t old_place, std::uint32_t new_place) const {
    return same(front_ + old_place, front_ + new_place);
  }

  void forget_pairs();
  void pair_others();
  std::ptrdiff_t count_moved() const { return std::ranges::count(moved_, true); }
  void strip_ends();
  void walk_side_by_side();
  std::pair<std::uint32_t, std::uint32_t> go_on_from(std::uint32_t old_place, std::uint32_t new_place) const;
  std::uint32_t equal_run(std::uint32_t old_place, std::uint32_t new_place) const;
  void pair_by_key();
  void pair_by_content(const Places& old_places, const Places& new_places);
  template <class Visit>
  void for_each_common_content(const Places& old_places, const Places& new_places, Visit&& visit);
  std::vector<Known> by_content(Value list, const Places& places);
  std::vector<Known> by_key(Value list, const Places& places) const;
  void find_moved();
  void try_common_order();
  bool find_tokens(Places& of_old, Places& of_new);
  void pair_alike();
  void pair_alike_within(const Places& old_gap, const Places& new_gap);
  ListPairs result() const;
  static Places left_over(const Places& partners);
  void pair(std::uint32_t old_place, std::uint32_t new_place, bool same) {
    partner_of_old_[old_place] = new_place;
    partner_of_new_[new_place] = old_place;
    same_[new_place] = same;
  }

  Value old_, new_;
  std::uint32_t old_count_, new_count_;
  bool by_image_;
  const vtrfile::MemberType* key_;
  std::uint32_t front_ = 0, old_end_ = 0, new_end_ = 0;
  // From here on places are counted from 0 behind the items in front.
  Places partner_of_old_, partner_of_new_;
  std::vector<bool> same_;
  std::vector<bool> moved_;           // of the new items
  std::vector<std::string> written_;  // items as they'd be written, where no image has them
};

void Pairing::forget_pairs() {
  partner_of_old_.assign(old_end_ - front_, kNone);
  partner_of_new_.assign(new_end_ - front_, kNone);
  same_.assign(partner_of_new_.size(), false);
}

// Those that stand in no common order.
void Pairing::pair_others() {
  pair_by_key();
  pair_by_content(left_over(partner_of_old_), left_over(partner_of_new_));
  find_moved();
}

void Pairing::strip_ends() {
  const std::uint32_t shorter = std::min(old_count_, new_count_);
  while (front_ < shorter && same(front_, front_)) ++front_;
  old_end_ = old_count_;
  new_end_ = new_count_;
  while (old_end_ > front_ && new_end_ > front_ && same(old_end_ - 1, new_end_ - 1)) {
    --old_end_;
    --new_end_;
  }
}

// How many equal items follow each other from these two on, as far as it takes to tell a good way on from a bad one.
std::uint32_t Pairing::equal_run(std::uint32_t old_place, std::uint32_t new_place) const {
  constexpr std::uint32_t kEnough = 8;
  std::uint32_t run = 0;
  while (run < kEnough && old_place + run < partner_of_old_.size() && new_place + run < partner_of_new_.size() &&
         same_between(old_place + run, new_place + run)) {
    ++run;
  }
  return run;
}

// Where the walk goes on from two items that differ.
std::pair<std::uint32_t, std::uint32_t> Pairing::go_on_from(std::uint32_t old_place, std::uint32_t new_place) const {
  constexpr std::uint32_t kFar = 4;
  std::pair best(old_place + 1, new_place + 1);
  std::uint32_t longest = equal_run(best.first, best.second);
  for (std::uint32_t more = 1; more <= kFar; ++more) {
    for (const auto& way : {std::pair(old_place, new_place + more), std::pair(old_place + more, new_place)}) {
      const std::uint32_t run = equal_run(way.first, way.second);
      if (run > longest) {
        longest = run;
        best = way;
      }
    }
  }
  return best;
}

void Pairing::walk_side_by_side() {
  std::uint32_t old_place = 0, new_place = 0;
  while (old_place < partner_of_old_.size() && new_place < partner_of_new_.size()) {
    if (same_between(old_place, new_place)) {
      pair(old_place++, new_place++, true);
    } else {
      std::tie(old_place, new_place) = go_on_from(old_place, new_place);
    }
  }
}

Places Pairing::left_over(const Places& partners) {
  Places places;
  for (std::uint32_t place = 0; place < partners.size(); ++place) {
    if (partners[place] == kNone) places.push_back(place);
  }
  return places;
}

// Calls visit(items of old, items of new) for each thing by which items of both are known.
template <class Visit>
void for_each_common(const std::vector<Known>& of_old, const std::vector<Known>& of_new, Visit&& visit) {
  auto one = of_old.begin();
  auto other = of_new.begin();
  while (one != of_old.end() && other != of_new.end()) {
    const auto behind = [](auto from, auto end) {
      return std::find_if(from, end, [by = from->by](const Known& known) { return known.by != by; });
    };
    if (const int order = one->by.compare(other->by); order < 0) {
      ++one;
    } else if (order > 0) {
      ++other;
    } else {
      const auto one_behind = behind(one, of_old.end());
      const auto other_behind = behind(other, of_new.end());
      visit(std::span(one, one_behind), std::span(other, other_behind));
      one = one_behind;
      other = other_behind;
    }
  }
}

Places places_of(std::span<const Known> known) {
  Places places;
  std::ranges::transform(known, std::back_inserter(places), &Known::place);
  return places;
}

std::vector<Known> Pairing::by_key(Value list, const Places& places) const {
  std::vector<Known> known;
  for (const std::uint32_t place : places) {
    const std::string_view key = key_bytes(list.element(front_ + place), *key_);
    if (!key.empty()) known.push_back({key, place});
  }
  std::sort(known.begin(), known.end());
  return known;
}

void Pairing::pair_by_key() {
  if (!key_) return;
  const auto of_old = by_key(old_, left_over(partner_of_old_));
  const auto of_new = by_key(new_, left_over(partner_of_new_));
  for_each_common(of_old, of_new, [&](std::span<const Known> some, std::span<const Known> others) {
    Places old_places = places_of(some), new_places = places_of(others);
    if (some.size() > 1 || others.size() > 1) {
      pair_by_content(old_places, new_places);
      std::erase_if(old_places, [&](std::uint32_t place) { return partner_of_old_[place] != kNone; });
      std::erase_if(new_places, [&](std::uint32_t place) { return partner_of_new_[place] != kNone; });
    }
    for (std::size_t nth = 0; nth < std::min(old_places.size(), new_places.size()); ++nth) {
      pair(old_places[nth], new_places[nth], false);
    }
  });
}

std::vector<Known> Pairing::by_content(Value list, const Places& places) {
  std::vector<Known> known;
  for (const std::uint32_t place : places) {
    const auto image = by_image_ ? list.image_of(front_ + place) : std::span<const unsigned char>();
    std::string_view content(reinterpret_cast<const char*>(image.data()), image.size());
    if (image.empty()) {
      append_written(written_.emplace_back(), list.element(front_ + place));
      content = written_.back();
    }
    known.push_back({content, place});
  }
  std::sort(known.begin(), known.end());
  return known;
}

template <class Visit>
void Pairing::for_each_common_content(const Places& old_places, const Places& new_places, Visit&& visit) {
  written_.clear();
  written_.reserve(old_places.size() + new_places.size());  // so that none of them moves
  for_each_common(by_content(old_, old_places), by_content(new_, new_places), visit);
}

void Pairing::pair_by_content(const Places& old_places, const Places& new_places) {
  for_each_common_content(old_places, new_places, [&](std::span<const Known> some, std::span<const Known> others) {
    for (std::size_t nth = 0; nth < std::min(some.size(), others.size()); ++nth) {
      pair(some[nth].place, others[nth].place, true);
    }
  });
}

// By a longest increasing subsequence of the old places, in the order of the new ones.
void Pairing::find_moved() {
  moved_.assign(partner_of_new_.size(), false);
  Places last_of_length;                         // the new place that ends the best run of each length
  Places before(partner_of_new_.size(), kNone);  // the new place in front of it in that run
  const auto old_of = [&](std::uint32_t new_place) { return partner_of_new_[new_place]; };
  for (std::uint32_t place = 0; place < partner_of_new_.size(); ++place) {
    if (partner_of_new_[place] == kNone) continue;
    moved_[place] = true;
    const auto at = std::ranges::lower_bound(last_of_length, old_of(place), {}, old_of);
    if (at != last_of_length.begin()) before[place] = *std::prev(at);
    if (at == last_of_length.end()) {
      last_of_length.push_back(place);
    } else {
      *at = place;
    }
  }
  if (last_of_length.empty()) return;
  for (std::uint32_t place = last_of_length.back(); place != kNone; place = before[place]) moved_[place] = false;
}

// Numbers by which an item and those that may be its partners are known: its key, if it occurs once in both, else its
// content. False when each item has a number of its own; then no order of pairs is better than another.
bool Pairing::find_tokens(Places& of_old, Places& of_new) {
  std::uint32_t next = 0;
  bool repeated = false;
  const auto number = [&](std::span<const Known> some, std::span<const Known> others) {
    for (const Known& known : some) of_old[known.place] = next;
    for (const Known& known : others) of_new[known.place] = next;
    ++next;
  };
  if (key_) {
    for_each_common(by_key(old_, left_over(of_old)), by_key(new_, left_over(of_new)), [&](auto some, auto others) {
      if (some.size() == 1 && others.size() == 1) number(some, others);
    });
  }
  for_each_common_content(left_over(of_old), left_over(of_new), [&](auto some, auto others) {
    repeated = repeated || some.size() > 1 || others.size() > 1;
    number(some, others);
  });
  std::ranges::replace(of_new, kNone, kNone - 1);  // no token of an old item
  return repeated;
}

void Pairing::try_common_order() {
  Places of_old(partner_of_old_.size(), kNone), of_new(partner_of_new_.size(), kNone);
  const auto common = find_tokens(of_old, of_new) ? longest_common(of_old, of_new) : std::nullopt;
  if (!common) return;
  const auto moved = count_moved();
  const auto before = std::tuple(partner_of_old_, partner_of_new_, same_, moved_);
  forget_pairs();
  for (const auto& [old_place, new_place] : *common) pair(old_place, new_place, same_between(old_place, new_place));
  pair_others();
  if (count_moved() >= moved) std::tie(partner_of_old_, partner_of_new_, same_, moved_) = before;
}

// Between two items that stay stand those that are left over and those that have moved.
void Pairing::pair_alike() {
  std::uint32_t old_place = 0;
  Places old_gap, new_gap;
  const auto end_gap = [&](std::uint32_t old_end) {
    for (; old_place < old_end; ++old_place) {
      if (partner_of_old_[old_place] == kNone) old_gap.push_back(old_place);
    }
    pair_alike_within(old_gap, new_gap);
    old_gap.clear();
    new_gap.clear();
  };
  const auto new_count = static_cast<std::uint32_t>(partner_of_new_.size());
  for (std::uint32_t new_place = 0; new_place < new_count; ++new_place) {
    if (partner_of_new_[new_place] == kNone) {
      new_gap.push_back(new_place);
    } else if (!moved_[new_place]) {
      end_gap(partner_of_new_[new_place]);
    }
  }
  end_gap(static_cast<std::uint32_t>(partner_of_old_.size()));
}

// The first of each that are left over are tried with each other, and with those a little behind them.
void Pairing::pair_alike_within(const Places& old_gap, const Places& new_gap) {
  constexpr std::size_t kSmall = 64;
  const std::size_t far = std::max(old_gap.size(), new_gap.size()) <= kSmall ? 4 : 1;
  std::size_t at_old = 0, at_new = 0;
  while (at_old < old_gap.size() && at_new < new_gap.size()) {
    std::optional<std::size_t> fewest;
    std::pair best(at_old, at_new);
    const auto attempt = [&](std::size_t old_nth, std::size_t new_nth) {
      if (old_nth >= old_gap.size() || new_nth >= new_gap.size()) return;
      const auto changes =
          changes_between(old_.element(front_ + old_gap[old_nth]), new_.element(front_ + new_gap[new_nth]));
      if (!changes || (fewest && *fewest <= *changes)) return;
      fewest = changes;
      best = {old_nth, new_nth};
    };
    attempt(at_old, at_new);
    for (std::size_t behind = 1; behind <= far; ++behind) {
      attempt(at_old, at_new + behind);
      attempt(at_old + behind, at_new);
    }
    if (fewest) pair(old_gap[best.first], new_gap[best.second], false);
    at_old = best.first + 1;
    at_new = best.second + 1;
  }
}

ListPairs Pairing::result() const {
  ListPairs pairs{front_, old_count_ - old_end_, {}, {}};
  for (std::uint32_t place = 0; place < partner_of_new_.size(); ++place) {
    pairs.of_new.push_back({partner_of_new_[place], same_[place], moved_[place]});
  }
  for (const std::uint32_t partner : partner_of_old_) pairs.removed_of_old.push_back(partner == kNone);
  return pairs;
}

}  // namespace

ListPairs pair_items(Value old_list, Value new_list) { return Pairing(old_list, new_list).run(); }

}  // namespace trvtrout::differences
