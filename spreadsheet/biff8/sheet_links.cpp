#include "spreadsheet/biff8/sheet_links.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace trvtrout::spreadsheet::biff8 {
namespace {

// What stands in a SUPBOOK in the place of another workbook's name.
constexpr std::uint16_t kOwnBook = 0x0401;

// In an EXTERNSHEET: a count, then the book and its first and last sheet of each reference.
constexpr std::size_t kFirstReference = 2, kReferenceSize = 6, kFirstSheet = 2, kLastSheet = 4;
constexpr std::uint16_t kNoSheet = 0xFFFE;  // and above

constexpr std::size_t kNameSheet = 8;
constexpr std::size_t kActiveSheet = 10, kFirstTab = 12, kSelectedSheets = 14;

bool is_own_book(const Record& record) { return record.body.size() == 4 && record.u16(2) == kOwnBook; }

// The numbers of the books that stand for the workbook itself.
std::vector<bool> own_books(const Globals& globals) {
  std::vector<bool> own;
  for (const std::size_t index : globals.all(kSupBook)) own.push_back(is_own_book(globals.records[index]));
  return own;
}

// The references of an EXTERNSHEET, which may go on in further records.
struct References {
  Globals& globals;
  std::size_t index;
  std::string body = globals.whole_body(index);
  std::size_t count = get<std::uint16_t>(body, 0);

  std::uint16_t at(std::size_t reference, std::size_t field) const {
    return get<std::uint16_t>(body, kFirstReference + kReferenceSize * reference + field);
  }
  void set(std::size_t reference, std::size_t field, std::size_t value) {
    put(body, kFirstReference + kReferenceSize * reference + field, static_cast<std::uint16_t>(value));
  }
  void store() { globals.set_whole_body(index, body); }
};

void shift_references(References references, const std::vector<bool>& own, std::size_t position) {
  for (std::size_t each = 0; each < references.count; ++each) {
    const std::size_t book = references.at(each, 0);
    if (book >= own.size() || !own[book]) continue;
    for (const std::size_t field : {kFirstSheet, kLastSheet}) {
      const std::uint16_t sheet = references.at(each, field);
      if (sheet < kNoSheet && sheet >= position) references.set(each, field, sheet + 1u);
    }
  }
  references.store();
}

void add_tab_id(Record& record, std::size_t position) {
  std::vector<std::uint16_t> ids;
  for (std::size_t at = 0; at + 2 <= record.body.size(); at += 2) ids.push_back(record.u16(at));
  std::uint16_t id = 1;
  if (!ids.empty()) id = static_cast<std::uint16_t>(*std::ranges::max_element(ids) + 1);
  ids.insert(ids.begin() + static_cast<std::ptrdiff_t>(std::min(position, ids.size())), id);
  ByteWriter body;
  for (const std::uint16_t each : ids) body.u16(each);
  record.body = body.take();
}

std::size_t own_book(Globals& globals, std::size_t sheets) {
  const std::vector<bool> own = own_books(globals);
  const auto found = std::ranges::find(own, true);
  // Behind what belongs to the books of others: their names and cells.
  if (found == own.end())
    globals.insert(globals.place_for(kCrn),
                   {kSupBook, ByteWriter().u16(static_cast<std::uint16_t>(sheets)).u16(kOwnBook).take()});
  return static_cast<std::size_t>(found - own.begin());
}

// The number by which a formula refers to the sheet.
std::uint16_t reference_to(Globals& globals, std::size_t position, std::size_t sheets) {
  const std::size_t book = own_book(globals, sheets);
  if (globals.all(kExternSheet).empty()) globals.append({kExternSheet, std::string(2, '\0')});
  const std::vector<std::size_t> tables = globals.all(kExternSheet);
  // Some programs number the last table's references first, others the first one's.
  if (tables.size() > 1)
    raise_damaged(
        "it has two tables of references to sheets (EXTERNSHEET), to which no filter's can be added for sure");
  References references{globals, tables[0]};
  for (std::size_t each = 0; each < references.count; ++each)
    if (references.at(each, 0) == book && references.at(each, kFirstSheet) == position &&
        references.at(each, kLastSheet) == position)
      return static_cast<std::uint16_t>(each);
  const std::size_t end = kFirstReference + kReferenceSize * references.count;
  if (references.count == 0xFFFF || references.body.size() != end)
    raise_damaged("its table of references to sheets has the wrong length");
  const auto sheet = static_cast<std::uint16_t>(position);
  references.body += ByteWriter().u16(static_cast<std::uint16_t>(book)).u16(sheet).u16(sheet).bytes();
  put(references.body, 0, static_cast<std::uint16_t>(references.count + 1));
  references.store();
  return static_cast<std::uint16_t>(references.count);
}

}  // namespace

void shift_sheet_numbers(Globals& globals, std::size_t position, std::size_t sheets) {
  const std::vector<bool> own = own_books(globals);
  // From the last one, as a table may get another number of records.
  const std::vector<std::size_t> tables = globals.all(kExternSheet);
  for (auto table = tables.rbegin(); table != tables.rend(); ++table)
    shift_references(References{globals, *table}, own, position);
  for (Record& record : globals.records) {
    if (record.type == kSupBook && is_own_book(record)) record.set16(0, sheets);
    // A name of one sheet counts the sheets from 1, a name of the workbook has 0.
    if (record.type == kName && record.u16(kNameSheet) > position)
      record.set16(kNameSheet, record.u16(kNameSheet) + 1u);
    if (record.type == kTabId) add_tab_id(record, position);
    if (record.type == kWindow1) {
      record.set16(kActiveSheet, position);
      record.set16(kFirstTab, std::min<std::size_t>(record.u16(kFirstTab), position));
      record.set16(kSelectedSheets, 1);
    }
  }
}

void set_filter_name(Globals& globals, std::size_t position, std::size_t sheets, std::size_t rows) {
  constexpr std::uint16_t kHiddenBuiltIn = 0x0021, kBuiltIn = 0x0020;
  constexpr std::uint8_t kFilterDatabase = 0x0D, kAreaOfASheet = 0x3B;
  constexpr std::size_t kNameHead = 14;
  const std::uint16_t reference = reference_to(globals, position, sheets);
  ByteWriter formula;
  formula.u8(kAreaOfASheet).u16(reference).u16(0).u16(static_cast<std::uint16_t>(rows - 1)).u16(0).u16(0);
  ByteWriter name;
  name.u16(kHiddenBuiltIn).u8(0).u8(1).u16(static_cast<std::uint16_t>(formula.bytes().size())).u16(0);
  name.u16(static_cast<std::uint16_t>(position + 1)).zeros(4).u8(0).u8(kFilterDatabase).raw(formula.bytes());
  const std::string text{'\0', static_cast<char>(kFilterDatabase)};
  const auto is_there = [&](const Record& record) {
    return record.type == kName && (record.u16(0) & kBuiltIn) != 0 && record.u16(kNameSheet) == position + 1 &&
           record.body.substr(std::min(record.body.size(), kNameHead), text.size()) == text;
  };
  if (const auto old = std::ranges::find_if(globals.records, is_there); old != globals.records.end()) {
    const auto at = static_cast<std::size_t>(old - globals.records.begin());
    globals.set_body(at, globals.behind(at), name.bytes());
    return;
  }
  // Formulas refer to names by their number, so it goes behind the others.
  globals.append({kName, name.take()});
}

}  // namespace trvtrout::spreadsheet::biff8
