#include <algorithm>
#include <cstring>

#include "vtrfile/salvage_run.h"
#include "vtrfile/sections.h"

// Steps 6 and 8: the numbers of the lists that lost items, the sections that count, and what is told of them.
namespace trvtrout::vtrfile {

using Role = Layout::Role;

void SalvageRun::set_numbers(Open& record) {
  for (const OpenList& list : record.lists) {
    if (!list.struck && list.kept == list.announced) continue;
    SalvagedList lost{record.path + '/' + record.layout->steps[list.step].path, list.announced, list.kept};
    new_.put(list.count_at, &list.kept, sizeof list.kept);
    for (const auto& [step, at] : record.numbers) {
      const Layout::Step& number = record.layout->steps[step];
      if (number.role != Role::kKey && number.list == list.step) set_number(number, at, list, lost);
    }
    result_.sections.back().lists.push_back(std::move(lost));
  }
}

void SalvageRun::set_number(const Layout::Step& number, std::size_t at, const OpenList& list, SalvagedList& lost) {
  const auto used = static_cast<std::int32_t>(list.used);
  std::int32_t value = 0;
  std::memcpy(&value, new_.bytes().data() + at, number.size);
  if (number.role == Role::kCount) {
    // What the list says of itself, if it can be so.
    if (list.announced && value >= used && value <= static_cast<std::int64_t>(*list.announced)) {
      lost.announced = static_cast<std::uint32_t>(value);
    }
    lost.kept = list.used;
    value = used;
  }
  if (number.role == Role::kMax) value = static_cast<std::int32_t>(used > 0 ? list.kept : 0);
  if (number.role == Role::kCurrent) value = std::min(value, used);
  new_.put(at, &value, number.size);
}

void SalvageRun::end_section(bool whole) {
  SalvagedSection& section = result_.sections.back();
  section.bytes.end = offset(at_);
  section.whole = whole;
  pieces_.push_back({section_out_, new_.size()});
  limit_ = end_;
}

void SalvageRun::choose_sections() {
  std::size_t number = result_.sections.size();
  for (SalvagedSection& section : result_.sections) {
    const auto same = [&](const SalvagedSection& other) { return other.tag == section.tag; };
    const auto better = [&](const SalvagedSection& other) {
      return same(other) && (other.whole != section.whole ? other.whole : &other > &section);
    };
    section.chosen = std::ranges::none_of(result_.sections, better);
  }
  // From the last one on, so that the places of those in front stay.
  while (number-- > 0) {
    if (!result_.sections[number].chosen) new_.erase(pieces_[number].begin, pieces_[number].end);
  }
}

std::optional<Salvaged> SalvageRun::finish() {
  if (result_.sections.empty() && !result_.end_found) return {};
  result_.bytes = image_.file_size();
  result_.behind_end = result_.end_found ? offset(end_) - offset(at_) : 0;
  choose_sections();
  if (!result_.end_found) {
    new_.add_text(kEndTag);
    new_.add_number(std::int16_t{1});
    new_.add_text("");
    new_.add_text("");
  }
  std::vector<ByteRange> taken;
  for (const Rebuilt::Piece& piece : new_.pieces()) {
    result_.pieces.push_back({piece.at, {offset(piece.from.begin), offset(piece.from.end)}});
    taken.push_back(piece.from);
  }
  std::ranges::sort(taken, {}, &ByteRange::begin);
  Place at = begin_;
  const Place last = end_ - result_.behind_end;
  for (const ByteRange& range : taken) {
    if (range.begin > at) result_.unexplained.push_back({offset(at), offset(range.begin)});
    at = std::max(at, range.end);
  }
  if (last > at) result_.unexplained.push_back({offset(at), offset(last)});
  result_.image = image_of({reinterpret_cast<const unsigned char*>(new_.bytes().data()), new_.size()});
  return std::move(result_);
}

}  // namespace trvtrout::vtrfile
