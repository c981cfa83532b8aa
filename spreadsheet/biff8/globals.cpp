#include "spreadsheet/biff8/globals.h"

#include <algorithm>
#include <iterator>

namespace trvtrout::spreadsheet::biff8 {
namespace {

// The order in which the format wants those records that may have to be added, and those that stand among them.
constexpr std::uint16_t kOrder[] = {
    kFont,
    kFormat,
    kXf,
    kXfCrc,
    kXfExt,
    kStyle,
    kStyleExt,
    kPalette,
    kBoundSheet,
    kCountry,
    kSupBook,
    kExternName,
    kXct,
    kCrn,
    kExternSheet,
    kName,
    kNameComment,
    kNameFunctionGroup,
    kNamePublish,
    kRecalcId,
    kHeaderPicture,
    kMsoDrawingGroup,
    kSst,
    kExtSst,
};

std::ptrdiff_t rank(std::uint16_t type) {
  const auto* found = std::ranges::find(kOrder, type);
  return found == std::end(kOrder) ? -1 : found - std::begin(kOrder);
}

void check_version(const RecordView& first) {
  if (first.type != kBof || first.body.size() < 4) raise_damaged("its stream Workbook doesn't start as one should");
  if (get<std::uint16_t>(first.body, 0) != kVersion || get<std::uint16_t>(first.body, 2) != kGlobalsSubstream)
    raise_older_format();
}

// What forbids a change. A record is named before its body is looked at, because FILEPASS encrypts what follows.
void check_allowed(const RecordView& record) {
  const auto number = [&record](std::size_t at) { return get<std::uint16_t>(record.body, at); };
  if (record.type == kFilePass) throw WorkbookError("it's encrypted; remove its password first");
  if (record.type == kProtect && number(0) != 0)
    throw WorkbookError("its structure is protected; remove the protection first");
  if (record.type == kFileSharing && record.body.size() >= 4 && number(2) != 0)
    throw WorkbookError("it asks for a password before it's changed; remove the password first");
  if (record.type == kRealTimeData)
    throw WorkbookError("it has real-time data, which a further sheet would upset; save it as .xlsx");
}

}  // namespace

std::vector<std::size_t> Globals::all(std::uint16_t type) const {
  std::vector<std::size_t> found;
  for (std::size_t index = 0; index < records.size(); ++index)
    if (records[index].type == type) found.push_back(index);
  return found;
}

std::size_t Globals::place_for(std::uint16_t type) const {
  const std::ptrdiff_t own = rank(type);
  std::size_t last = 0;
  for (std::size_t index = 1; index < records.size(); ++index)
    if (const std::ptrdiff_t its = rank(records[index].type); its >= 0 && its <= own) last = index;
  return behind(last);
}

void Globals::insert(std::size_t index, Record record) {
  records.insert(records.begin() + static_cast<std::ptrdiff_t>(index), std::move(record));
}

std::size_t Globals::behind(std::size_t index) const {
  do ++index;
  while (index < records.size() && records[index].type == kContinue);
  return index;
}

std::string Globals::whole_body(std::size_t index) const {
  std::string body;
  for (const std::size_t end = behind(index); index < end; ++index) body += records[index].body;
  return body;
}

void Globals::set_body(std::size_t index, std::size_t end, std::string_view body) {
  const auto begin = records.begin() + static_cast<std::ptrdiff_t>(index);
  std::vector<Record> parts{{begin->type, std::string(body.substr(0, kLargestBody))}};
  for (std::size_t at = kLargestBody; at < body.size(); at += kLargestBody)
    parts.push_back({kContinue, std::string(body.substr(at, kLargestBody))});
  const auto place = records.erase(begin, records.begin() + static_cast<std::ptrdiff_t>(end));
  records.insert(place, std::move_iterator(parts.begin()), std::move_iterator(parts.end()));
}

std::size_t Globals::bytes() const {
  std::size_t total = 0;
  for (const Record& record : records) total += kRecordHead + record.body.size();
  return total;
}

Globals read_globals(std::string_view stream, std::size_t& end) {
  Globals globals;
  check_version(record_at(stream, 0));
  end = 0;
  do {
    const RecordView record = record_at(stream, end);
    check_allowed(record);
    globals.records.push_back({record.type, std::string(record.body)});
    end = record.end();
  } while (globals.records.back().type != kEof);
  return globals;
}

}  // namespace trvtrout::spreadsheet::biff8
