#include "spreadsheet/biff8/biff8_workbook.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "spreadsheet/biff8/compound_file.h"
#include "spreadsheet/biff8/globals.h"
#include "spreadsheet/biff8/old_sheet.h"
#include "spreadsheet/biff8/shared_strings.h"
#include "spreadsheet/biff8/sheet_links.h"
#include "spreadsheet/biff8/sheet_stream.h"
#include "spreadsheet/biff8/styles.h"
#include "spreadsheet/exchange.h"
#include "text/utf8.h"

namespace trvtrout::spreadsheet {

using namespace biff8;

namespace {

constexpr std::u16string_view kStream = u"Workbook";
// Far more than a program shows; sheets are counted in 16 bits, of which the last values have meanings of their own.
constexpr std::size_t kMostSheets = 0x7FFF;

// What an OLE2 file must not have beside its workbook, and why.
struct Forbidden {
  std::u16string_view name;
  const char* reason;
};
constexpr Forbidden kForbidden[] = {
    {u"EncryptedPackage", "it's encrypted; remove its password first"},
    {u"\x0006"
     u"DataSpaces",
     "it's encrypted or under rights management; remove that first"},
    {u"Book", "it holds an older format too, in which a further sheet would be missing; save it as one format only"},
    {u"_signatures", "it's signed, and a further sheet would break the signature; remove the signature first"},
    {u"_xmlsignatures", "it's signed, and a further sheet would break the signature; remove the signature first"},
    {u"Revision Log", "it's shared with a log of changes; stop sharing it first"},
    {u"User Names", "it's shared by several users; stop sharing it first"},
};

void check_container(const CompoundFile& file) {
  if (!file.has(kStream) && file.has(u"Book")) raise_older_format();
  for (const Forbidden& forbidden : kForbidden)
    if (file.has(forbidden.name)) throw WorkbookError(forbidden.reason);
  if (!file.has(kStream)) throw WorkbookError("it's not a workbook but another kind of document");
}

// A sheet's substream, with the records in it that change.
struct Substream {
  std::size_t begin;
  std::vector<RecordView> windows, indices;
  std::uint16_t row_height = kUsualRowHeight;
  std::string settings;   // the records of calculation settings
  std::size_t texts = 0;  // of the table of texts, how many there must be for its cells
};

constexpr std::size_t kTextNumber = 6;  // in a LABELSST
constexpr std::uint16_t kCalculation[] = {kCalcCount, kCalcMode, kRefMode, kDelta, kIteration, kSaveRecalc};

void note(Substream& sheet, const RecordView& record) {
  if (record.type == kWindow2) sheet.windows.push_back(record);
  if (record.type == kIndex) sheet.indices.push_back(record);
  if (record.type == kLabelSst && record.body.size() >= kTextNumber + sizeof(std::uint32_t))
    sheet.texts = std::max(sheet.texts, std::size_t{get<std::uint32_t>(record.body, kTextNumber)} + 1);
  if (std::ranges::find(kCalculation, record.type) != std::end(kCalculation))
    append_record(sheet.settings, {record.type, std::string(record.body)});
  // A height that holds for hidden or specially set rows is no model for other sheets.
  if (record.type == kDefaultRowHeight && record.body.size() >= 4 && (get<std::uint16_t>(record.body, 0) & 3) == 0)
    sheet.row_height = std::clamp<std::uint16_t>(get<std::uint16_t>(record.body, 2), 2, 8192);
}

// Reads a substream up to its EOF, which must stand before `limit`; charts in it have a BOF and an EOF of their own.
Substream read_substream(std::string_view stream, std::size_t begin, std::size_t limit) {
  Substream sheet{.begin = begin};
  std::size_t depth = 0, at = begin;
  do {
    if (at >= limit) raise_damaged("a sheet in it has no end");
    const RecordView record = record_at(stream, at);
    if (at == begin && record.type != kBof) raise_damaged("a sheet in it has no start");
    if (record.end() > limit) raise_damaged("a sheet in it reaches into another one");
    if (record.type == kBof) ++depth;
    if (record.type == kEof) --depth;
    if (depth == 1) note(sheet, record);
    at = record.end();
  } while (depth > 0);
  return sheet;
}

// Programs trust the results that stand beside formulas, also of those that refer to the sheet, unless they were worked
// out by an older program.
void forget_results(Globals& globals) {
  constexpr std::size_t kProgram = 4;
  for (const std::size_t index : globals.all(kRecalcId)) globals.records[index].set32(kProgram, 0);
}

class Biff8Workbook : public WorkbookFile {
 public:
  explicit Biff8Workbook(std::string bytes) : file_(std::move(bytes)) {
    check_container(file_);
    stream_ = file_.stream(kStream);
    globals_ = read_globals(stream_, globals_end_);
    read_sheets();
  }

  const std::vector<std::string>& sheet_names() const override { return names_; }
  bool counts_from_1904() const override {
    const auto modes = globals_.all(kDateMode);
    return !modes.empty() && globals_.records[modes[0]].u16(0) != 0;
  }
  SheetLimits limits() const override { return {kRows, kColumns}; }
  std::string with_sheet(const Sheet& sheet) const override;
  std::string with_content(std::size_t position, const Sheet& sheet, std::span<const SheetMark> marks) const override;
  void require_exchangeable(std::size_t position, std::span<const SheetMark> marks) const override {
    static_cast<void>(old_sheet(position, SharedStrings(globals_), marks));
  }

 private:
  static constexpr std::size_t kPlace = 0, kKind = 5, kName = 6;  // in a BOUNDSHEET
  static constexpr std::uint32_t kNoPlace = 0;

  // How far the sheets move.
  struct Move {
    std::size_t old_begin, new_begin;                // of all
    std::size_t changed_at, old_length, new_length;  // of the one that is new or has new content
    std::size_t operator()(std::size_t at) const {
      at = at - old_begin + new_begin;
      return at >= changed_at - old_begin + new_begin + old_length ? at - old_length + new_length : at;
    }
  };

  void read_sheets();
  std::string_view settings() const;
  std::size_t position() const;
  void check_texts(const SharedStrings& strings) const;
  void add_bound_sheet(Globals& globals, const Sheet& sheet) const;
  OldSheet old_sheet(std::size_t position, const SharedStrings& strings, std::span<const SheetMark> marks) const;
  std::string drawing_layer(Globals& globals, const OldSheet& old, bool has_filter) const;
  static void mend_places(Globals& globals, const Move& move, std::size_t added_at);
  void mend_windows(std::string& stream, const Move& move) const;
  void mend_indices(std::string& stream, const Move& move) const;
  std::string spliced(Globals globals, const SharedStrings& strings, std::size_t at, std::size_t old_length,
                      std::string_view sheet, bool is_new) const;

  CompoundFile file_;
  std::string stream_;
  Globals globals_;
  std::size_t globals_end_ = 0;
  std::vector<std::string> names_;
  std::vector<Substream> sheets_;  // as in names_
};

void Biff8Workbook::read_sheets() {
  std::vector<std::size_t> begins;
  for (const std::size_t index : globals_.all(kBoundSheet)) {
    const Record& record = globals_.records[index];
    begins.push_back(record.u32(kPlace));
    names_.push_back(text::to_utf8(read_text(record.body, kName, 1)));
  }
  // No sheet reaches into another one, so each byte is looked at once.
  std::vector<std::size_t> sorted = begins;
  std::ranges::sort(sorted);
  if (std::ranges::adjacent_find(sorted) != sorted.end()) raise_damaged("two sheets in it share one place");
  if (!sorted.empty() && (sorted.front() < globals_end_ || sorted.back() >= stream_.size()))
    raise_damaged("a sheet in it has no place of its own");
  sorted.push_back(stream_.size());
  for (const std::size_t begin : begins)
    sheets_.push_back(read_substream(stream_, begin, *std::ranges::upper_bound(sorted, begin)));
}

std::size_t Biff8Workbook::position() const {
  constexpr std::size_t kActiveSheet = 10;
  const auto windows = globals_.all(kWindow1);
  const std::size_t active = windows.empty() ? 0 : globals_.records[windows[0]].u16(kActiveSheet);
  return active < names_.size() ? active : 0;
}

// They are the workbook's, so all sheets have the same; a chart sheet has none.
std::string_view Biff8Workbook::settings() const {
  const auto found = std::ranges::find_if(sheets_, [](const Substream& sheet) { return !sheet.settings.empty(); });
  return found == sheets_.end() ? std::string_view() : found->settings;
}

// A cell of a text that isn't there would show one of the new ones.
void Biff8Workbook::check_texts(const SharedStrings& strings) const {
  for (std::size_t each = 0; each < sheets_.size(); ++each)
    if (sheets_[each].texts > strings.size())
      raise_damaged("a cell of its sheet '" + names_[each] + "' shows a text that its table of texts doesn't have");
}

void Biff8Workbook::add_bound_sheet(Globals& globals, const Sheet& sheet) const {
  const std::u16string name = text::from_utf8(sheet.name);
  ByteWriter body;
  body.u32(kNoPlace).u8(0).u8(0).u8(static_cast<std::uint8_t>(name.size())).raw(text_units(name));
  const auto sheets = globals.all(kBoundSheet);
  globals.insert(sheets.empty() ? globals.place_for(kBoundSheet) : sheets[position()], {kBoundSheet, body.take()});
}

// `added_at`: in the new stream, of the sheet that has no place yet.
void Biff8Workbook::mend_places(Globals& globals, const Move& move, std::size_t added_at) {
  for (const std::size_t index : globals.all(kBoundSheet)) {
    Record& record = globals.records[index];
    const std::uint32_t place = record.u32(kPlace);
    record.set32(kPlace, place == kNoPlace ? added_at : move(place));
  }
}

// `stream` is the new one: only one sheet is selected and active.
void Biff8Workbook::mend_windows(std::string& stream, const Move& move) const {
  constexpr std::uint16_t kSelectedAndActive = 0x0600;
  for (const Substream& sheet : sheets_) {
    for (const RecordView& window : sheet.windows) {
      const auto flags = get<std::uint16_t>(window.body, 0);
      put(stream, move(window.at) + kRecordHead, static_cast<std::uint16_t>(flags & ~kSelectedAndActive));
    }
  }
}

// What leads to rows leads there still.
void Biff8Workbook::mend_indices(std::string& stream, const Move& move) const {
  // Behind the first and last row the places of the column width and of the blocks of rows.
  constexpr std::size_t kFirstPlace = 12;
  for (const Substream& sheet : sheets_) {
    if (move.old_length != 0 && sheet.begin == move.changed_at) continue;
    for (const RecordView& index : sheet.indices) {
      for (std::size_t at = kFirstPlace; at + 4 <= index.body.size(); at += 4) {
        const std::size_t place = get<std::uint32_t>(index.body, at);
        if (place >= globals_end_ && place < stream_.size())
          put(stream, move(index.at) + kRecordHead + at, static_cast<std::uint32_t>(move(place)));
      }
    }
  }
}

// The file with other globals, and with `sheet` in the place of `old_length` bytes at `at`.
std::string Biff8Workbook::spliced(Globals globals, const SharedStrings& strings, std::size_t at,
                                   std::size_t old_length, std::string_view sheet, bool is_new) const {
  strings.store(globals);
  const Move move{globals_end_, globals.bytes(), at, old_length, sheet.size()};
  mend_places(globals, move, at - globals_end_ + globals.bytes());
  std::string stream;
  stream.reserve(globals.bytes() + sheet.size() + stream_.size());
  for (const Record& record : globals.records) append_record(stream, record);
  strings.mend_index(globals, stream);
  stream.append(stream_, globals_end_, at - globals_end_).append(sheet).append(stream_, at + old_length);
  if (is_new) mend_windows(stream, move);
  mend_indices(stream, move);
  // Bytes behind the last sheet mean nothing; a shorter stream would have to lie in the mini stream.
  stream.resize(std::max<std::size_t>(stream.size(), CompoundFile::kMiniCutoff));
  return file_.with_stream(kStream, stream);
}

std::string Biff8Workbook::with_sheet(const Sheet& sheet) const {
  if (names_.size() >= kMostSheets) throw WorkbookError("it has no room for another sheet");
  Globals globals = globals_;
  const std::size_t before = position(), sheets = names_.size() + 1;
  const std::uint16_t row_height = names_.empty() ? kUsualRowHeight : sheets_[before].row_height;
  SheetSetting setting{.frame = new_frame({.bof = globals_.records.front().body,
                                           .settings = settings(),
                                           .row_height = row_height,
                                           .windows = std::max<std::size_t>(1, globals.all(kWindow1).size())}),
                       .xfs = add_styles(globals, sheet.styles),
                       .row_height = row_height,
                       .drawing = {}};
  add_bound_sheet(globals, sheet);
  shift_sheet_numbers(globals, before, sheets);
  if (sheet.has_filter) {
    set_filter_name(globals, before, sheets, std::max<std::size_t>(1, sheet.rows()));
    setting.drawing = filter_drop_down(add_drawing(globals));
  }
  SharedStrings strings(globals);
  check_texts(strings);
  const std::string added = sheet_stream(sheet, setting, strings);
  return spliced(std::move(globals), strings, names_.empty() ? globals_end_ : sheets_[before].begin, 0, added, true);
}

OldSheet Biff8Workbook::old_sheet(std::size_t position, const SharedStrings& strings,
                                  std::span<const SheetMark> marks) const {
  const std::string& name = names_.at(position);
  const Record& bound = globals_.records[globals_.all(kBoundSheet)[position]];
  OldSheet old = read_old_sheet(stream_, sheets_[position].begin);
  const auto is_marked = [&](const auto& cell) {
    return has_mark(marks, cell.first, strings.text(cell.second).value_or(""));
  };
  if (get<std::uint8_t>(bound.body, kKind) != 0 || std::ranges::none_of(old.first_row, is_marked)) raise_foreign(name);
  if (!old.lost.empty()) raise_would_be_lost(name, old.lost);
  return old;
}

// A drawing keeps its numbers, whether it has something to show or not.
std::string Biff8Workbook::drawing_layer(Globals& globals, const OldSheet& old, bool has_filter) const {
  constexpr std::uint32_t kLayerAlone = 1;
  if (!old.drawing) return has_filter ? filter_drop_down(add_drawing(globals)) : std::string();
  return has_filter ? filter_drop_down(with_shapes(globals, *old.drawing, Drawing{}.shapes))
                    : empty_layer(with_shapes(globals, *old.drawing, kLayerAlone));
}

std::string Biff8Workbook::with_content(std::size_t position, const Sheet& sheet,
                                        std::span<const SheetMark> marks) const {
  Globals globals = globals_;
  SharedStrings strings(globals);
  check_texts(strings);
  OldSheet old = old_sheet(position, strings, marks);
  for (const auto& [text, cells] : old.texts) strings.release(text, cells);
  const SheetSetting setting{.frame = std::move(old.frame),
                             .xfs = add_styles(globals, sheet.styles),
                             .row_height = sheets_[position].row_height,
                             .drawing = drawing_layer(globals, old, sheet.has_filter)};
  if (sheet.has_filter) set_filter_name(globals, position, names_.size(), std::max<std::size_t>(1, sheet.rows()));
  forget_results(globals);
  const std::string content = sheet_stream(sheet, setting, strings);
  return spliced(std::move(globals), strings, sheets_[position].begin, old.size, content, false);
}

}  // namespace

std::unique_ptr<WorkbookFile> open_biff8(std::string bytes) {
  return std::make_unique<Biff8Workbook>(std::move(bytes));
}

}  // namespace trvtrout::spreadsheet
