#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "vtrfile/layout_walk.h"
#include "vtrfile/rebuilt.h"
#include "vtrfile/salvage.h"
#include "vtrfile/salvage_sight.h"

namespace trvtrout::vtrfile {

// One run over one file. The state is where the walk stands: the position, and the records that are open.
class SalvageRun {
 public:
  // `image` must outlive the run.
  SalvageRun(const Image& image, std::span<const FileRange> unreadable);

  std::optional<Salvaged> run();

 private:
  using Place = const unsigned char*;
  using Findings = LayoutWalk::Findings;

  // A list of an open record, as it is in the new file.
  struct Taken {
    Place place;      // in the old file
    std::size_t out;  // and in the new one
  };
  struct OpenList {
    std::uint32_t step;
    std::size_t count_at;                    // where the new file has the number of its items
    std::optional<std::uint32_t> announced;  // no value when its descriptor is struck
    std::uint32_t kept = 0, used = 0;
    std::uint32_t filled = 0;   // of those kept, up to the last that holds a text
    bool struck = false;        // items are missing
    std::size_t empty_at = 0;   // where the items behind that begin in the new file,
    Place empty = nullptr;      // and in the old one
    std::size_t behind = 0;     // where the list ends in the new file
    Place last = nullptr;       // the last item in the old one
    std::vector<Taken> recent;  // the last items

    // Whether it can have so many more items by what it says of itself.
    bool has_room_for(std::uint32_t items) const { return !announced || std::uint64_t{kept} + items <= *announced; }
  };
  // A record that is gone into.
  static constexpr std::uint32_t kVersionStep = 3;  // of the header
  struct Open {
    const Layout* layout;
    Place begin;
    std::size_t out;  // where it begins in the new file
    std::string path;
    std::uint32_t step = 0;  // the one that comes next; the list's while `in_list`
    bool in_list = false;
    std::uint32_t left = 0;  // items to come
    bool has_key = false, has_text = false;
    std::vector<OpenList> lists;
    std::vector<std::pair<std::uint32_t, std::size_t>> numbers;  // steps with a role and their places in the new file
  };

  enum class Where { kTag, kRecord, kItem, kList, kBehindList };
  // A place at which reading goes on.
  struct Resumption {
    Place at;
    Where where;
    std::size_t level = 0;         // of the open record in which it goes on
    std::uint32_t step = 0;        // the list's
    int section = TagPlace::kEnd;  // the one that begins here, if one does
    Evidence evidence;
    bool new_item = false;  // `level` is that of an item that isn't open yet
  };

  void choose_version();
  void guess_version();
  void read_header();
  bool next_section();  // false behind the end
  bool enter_section(const TagPlace& tag);
  bool is_whole(const TagPlace& tag, Place& end);
  void open_section(int section, const TagPlace& tag);
  bool advance();  // false when it breaks off at at_
  bool advance_list(Open& top);
  bool goes_on_in_list(const Open& top);
  bool goes_on_behind(Place next);
  void take_item(Open& top, Place next, const Findings& found);
  void count_item(Open& top, Place item, std::size_t out, bool has_key, bool filled);
  void take_steps(Open& top, std::uint32_t behind);
  void open_list(Open& top, const LayoutWalk::Descriptor& items);
  void close_top();
  void set_numbers(Open& record);
  void set_number(const Layout::Step& number, std::size_t at, const OpenList& list, SalvagedList& lost);

  bool resume();
  void give_back_empty();
  Resumption behind_zeros(Resumption found);
  void give_back_strange();
  bool step_back();
  void give_back(std::size_t level, Taken from, std::size_t items);
  std::optional<Resumption> find();
  std::optional<Resumption> settle(Resumption found);
  const Layout& item_layout(const Resumption& found) const;
  std::vector<Place> chain(const Layout& item, Place at, Place limit);
  std::optional<Resumption> same_at(const Resumption& found, Place at);
  std::uint32_t strangeness(const Layout& item, Place at, Place like);
  void try_place(Place at, std::optional<Resumption>& best);
  void try_record(const Open& record, const Resumption& like, bool fails_here, std::optional<Resumption>& best);
  void try_sections(Place at, std::optional<Resumption>& best);
  void try_struck_sections(Place at, std::uint32_t least_items, std::optional<Resumption>& best);
  bool numbers_agree(const Layout& item, Place at);
  bool number_agrees(const Layout& record, std::uint32_t list, Place at, std::uint32_t items) const;
  bool is_elsewhere(std::size_t section);
  void consider(Resumption resumption, std::vector<Spot> spots, std::optional<Resumption>& best);
  std::vector<Spot> spots_to(std::size_t level) const;
  bool worn_out() const { return walk_.work() > allowed_work_; }

  void go_on(const Resumption& resumption);
  // Ends the section that is open, and begins the one that stands there, if one does.
  void leave_section(const Resumption& resumption);
  // Goes into an item that has lost its beginning, of the innermost list.
  void open_item(Place at);
  // Goes on in the record that stays open, the innermost one.
  void go_on_in(Open& record, const Resumption& resumption);
  // Comes to the next item of the record's list; one of which the descriptor is lost gets a new one.
  void go_on_with_item(Open& record, const Resumption& resumption);
  // Ends the innermost open record, which breaks off in front of `behind`, or `ends_there` if it must.
  void close_struck(Place behind, bool ends_there);
  static void leave_list(Open& record);
  void leave_empty(Open& record, std::uint32_t step);
  // Comes to a step of the record, with what can be kept of those in front, which end in front of `at`.
  void skip_to(Open& record, std::uint32_t step, Place at, bool goes_on_there);
  void take_sound_steps(Open& record, std::uint32_t behind, Place at);
  bool take_exact_steps(Open& record, std::uint32_t behind, Place at);
  // `opened`: the list in which it goes on is open.
  void note_loss(const Resumption& resumption, bool opened);
  std::string label_at(const Layout& layout, Place at);

  void end_section(bool whole);
  std::optional<Salvaged> finish();
  void choose_sections();
  std::uint64_t offset(Place at) const { return static_cast<std::uint64_t>(at - begin_); }

  const Image& image_;
  Place begin_, end_;
  std::vector<ByteRange> unreadable_;
  LayoutWalk walk_;
  std::uint64_t allowed_work_;
  std::vector<SectionLayout> sections_;
  std::optional<Sight> sight_;

  Rebuilt new_;
  Place at_;
  Place limit_;  // of the section
  Place firm_;   // nothing in front of it is given back: so each place is come to only so often
  std::vector<Open> open_;
  std::map<const Layout*, Place> known_;  // an item of each layout, as far as one was met
  bool in_header_ = false;
  int stalls_ = 0;       // places at which it went on without having come further
  bool broken_ = false;  // reading has broken off somewhere before
  std::size_t section_out_ = 0;
  struct Piece {
    std::size_t begin, end;
  };
  std::vector<Piece> pieces_;  // where the sections stand in the new file
  Salvaged result_;
};

}  // namespace trvtrout::vtrfile
