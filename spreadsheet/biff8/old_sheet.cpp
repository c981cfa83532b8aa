#include "spreadsheet/biff8/old_sheet.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <span>

#include "spreadsheet/biff8/records.h"

namespace trvtrout::spreadsheet::biff8 {
namespace {

constexpr std::uint16_t kHead[] = {
    kBof,         kCalcCount,    kCalcMode,       kRefMode,          kDelta,          kIteration,
    kSaveRecalc,  kPrintHeaders, kPrintGridLines, kGridSet,          kGuts,           kDefaultRowHeight,
    kWsBool,      kHeader,       kFooter,         kHorizontalCenter, kVerticalCenter, kLeftMargin,
    kRightMargin, kTopMargin,    kBottomMargin,   kPrinter,          kSetup,          kHeaderFooter,
    kDefColWidth,
};
constexpr std::uint16_t kTail[] = {
    kWindow2,  kPageLayoutView, kZoom,     kPane,           kSelection, kStandardWidth,
    kPhonetic, kFeatureHead,    kCodeName, kSheetExtension, kEof,
};
constexpr std::uint16_t kExchanged[] = {
    kGlobalWidths, kIndex,    kDbCell,     kColInfo, kFilterMode, kAutoFilterInfo, kAutoFilter, kAutoFilter12,
    kSort,         kSortData, kDimensions, kRow,     kLabelSst,   kNumber,         kRk,         kMulRk,
    kBlank,        kMulBlank, kBoolErr,    kLabel,   kRString,    kMsoDrawing,
};

// What others mean to a person.
struct Lost {
  std::uint16_t type;
  const char* what;
};
constexpr Lost kLost[] = {
    {kFormula, "formulas"},
    {kArray, "formulas"},
    {kTable, "formulas"},
    {kSharedFormula, "formulas"},
    {kNote, "comments"},
    {kObj, "pictures, charts or other objects"},
    {kTextObject, "pictures, charts or other objects"},
    {kMergedCells, "merged cells"},
    {kConditionalFormats, "conditional formats"},
    {kDataValidations, "checks of what is typed in"},
    {kHyperlink, "links"},
    {kHorizontalBreaks, "page breaks"},
    {kVerticalBreaks, "page breaks"},
    {kPivotTable, "pivot tables"},
    {kProtect, "a protection"},
    {kObjectProtect, "a protection"},
    {kScenarioProtect, "a protection"},
    {kPassword, "a protection"},
};

bool is_among(std::uint16_t type, std::span<const std::uint16_t> types) {
  return std::ranges::find(types, type) != types.end();
}

std::string lost_text(std::uint16_t type) {
  const auto* found = std::ranges::find(kLost, type, &Lost::type);
  if (found != std::end(kLost)) return found->what;
  std::array<char, 4> digits{};
  char* const end = std::to_chars(digits.begin(), digits.end(), type, 16).ptr;
  return "things that no new sheet has (records of the type " + std::string(digits.begin(), end) + "h)";
}

// Some programs save a boolean as a formula, which several cells may share: they then only tell where it stands.
bool is_boolean(const RecordView& formula) {
  constexpr std::size_t kTokens = 20, kSharedTokens = 8;
  constexpr std::string_view kOneBoolean("\2\0\x1D", 3), kOneShared("\5\0\1", 3);
  const bool is_shared = formula.type == kSharedFormula;
  const std::string_view tokens =
      formula.body.substr(std::min(formula.body.size(), is_shared ? kSharedTokens : kTokens));
  return tokens.starts_with(kOneBoolean) || (!is_shared && tokens.starts_with(kOneShared));
}

// The drop-down goes with the filter; a protection that is switched off and a list of no page breaks are nothing.
bool is_exchanged(const RecordView& record) {
  constexpr std::uint16_t kNothingAtZero[] = {kWindowProtect, kProtect,          kObjectProtect, kScenarioProtect,
                                              kPassword,      kHorizontalBreaks, kVerticalBreaks};
  if (record.type == kObj) return is_filter_drop_down(record.body);
  if (record.type == kFormula || record.type == kSharedFormula) return is_boolean(record);
  if (is_among(record.type, kNothingAtZero))
    return record.body.size() < sizeof(std::uint16_t) || get<std::uint16_t>(record.body, 0) == 0;
  return is_among(record.type, kExchanged);
}

void note_text(OldSheet& sheet, const RecordView& cell) {
  constexpr std::size_t kColumn = 2, kText = 6;
  const auto text = get<std::uint32_t>(cell.body, kText);
  ++sheet.texts[text];
  if (get<std::uint16_t>(cell.body, 0) == 0) sheet.first_row.emplace_back(get<std::uint16_t>(cell.body, kColumn), text);
}

}  // namespace

OldSheet read_old_sheet(std::string_view stream, std::size_t begin) {
  OldSheet sheet;
  std::string passed, *place = nullptr;
  std::size_t depth = 0, at = begin;
  do {
    const RecordView record = record_at(stream, at);
    at = record.end();
    if (record.type == kBof) ++depth;
    // What goes on in further records goes where it began.
    if (record.type != kContinue || place == nullptr) {
      const bool is_head = is_among(record.type, kHead), is_tail = is_among(record.type, kTail);
      place = is_head ? &sheet.frame.head : is_tail ? &sheet.frame.tail : &passed;
      if (sheet.lost.empty() && !is_head && !is_tail && !is_exchanged(record)) sheet.lost = lost_text(record.type);
      if (sheet.lost.empty() && depth > 1) sheet.lost = "charts";
    }
    append_record(*place, {record.type, std::string(record.body)});
    passed.clear();
    if (record.type == kMsoDrawing && depth == 1 && !sheet.drawing) {
      sheet.drawing = drawing_of(record.body);
      if (sheet.lost.empty() && !sheet.drawing) sheet.lost = lost_text(kObj);
    }
    if (record.type == kLabelSst && depth == 1) note_text(sheet, record);
    if (record.type == kEof) --depth;
  } while (depth > 0);
  sheet.size = at - begin;
  return sheet;
}

}  // namespace trvtrout::spreadsheet::biff8
