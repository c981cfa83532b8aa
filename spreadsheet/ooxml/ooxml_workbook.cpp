#include "spreadsheet/ooxml/ooxml_workbook.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

#include "spreadsheet/exchange.h"
#include "spreadsheet/ooxml/old_sheet.h"
#include "spreadsheet/ooxml/sheet_part.h"
#include "spreadsheet/ooxml/style_part.h"
#include "spreadsheet/ooxml/workbook_part.h"
#include "spreadsheet/opc/package.h"
#include "spreadsheet/opc/relations.h"

namespace trvtrout::spreadsheet {
namespace {

using namespace ooxml;

constexpr SheetLimits kLimits{1048576, 16384};
constexpr std::string_view kOrigin =
    "http://schemas.openxmlformats.org/package/2006/relationships/digital-signature/origin";
constexpr std::string_view kSheetType = "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
constexpr std::string_view kStylesType = "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml";
// In lower case.
constexpr std::string_view kBinaryType = "application/vnd.ms-excel.sheet.binary.macroenabled.main";
constexpr std::string_view kWorkbookTypes[] = {
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml",
    "application/vnd.openxmlformats-officedocument.spreadsheetml.template.main+xml",
    "application/vnd.ms-excel.sheet.macroenabled.main+xml",
    "application/vnd.ms-excel.template.macroenabled.main+xml",
};

// A part whose first bytes were changed.
class ChangedHead : public PartStream {
 public:
  // `rest` goes on where `old_length` bytes of it were read.
  ChangedHead(std::string head, std::size_t old_length, std::unique_ptr<PartStream> rest)
      : size_(rest->size() - old_length + head.size()), head_(std::move(head)), rest_(std::move(rest)) {}
  std::uint64_t size() const override { return size_; }
  std::string_view next() override {
    const std::string_view head = std::exchange(pending_, {});
    return head.empty() ? rest_->next() : head;
  }

 private:
  std::uint64_t size_;
  std::string head_;
  std::string_view pending_ = head_;
  std::unique_ptr<PartStream> rest_;
};

// What stands in front of a sheet's cells, the largest that makes sense, and what all sheets together may have there.
constexpr std::size_t kLargestHead = std::size_t{4} << 20;
constexpr std::size_t kLargestHeads = std::size_t{64} << 20;

// The sheet with no view of it selected; nothing if none was. What selects it stands in front of its cells, so that no
// more of a large sheet is looked at: at most `budget` bytes, of which what was looked at is taken. The root of a sheet
// of old macros isn't in the workbook's namespace, `space`; its children are.
std::unique_ptr<PartStream> without_selection(const Package& package, const std::string& name, std::string_view space,
                                              std::size_t& budget) {
  auto content = package.stream(name);
  std::string head;
  for (std::size_t goal = 65536; goal <= kLargestHead; goal *= 2) {
    bool is_whole = false;
    while (head.size() < goal && !is_whole) {
      const std::string_view piece = content->next();
      head += piece;
      is_whole = piece.empty();
    }
    if (head.size() > budget) break;
    budget -= head.size();
    XmlPart part(name, head, is_whole ? XmlExtent::kWhole : XmlExtent::kHead);
    if (!is_whole && !part.child(part.root(), "sheetData", space)) continue;
    for (const auto view : part.children(part.child(part.root(), "sheetViews", space), "sheetView", space)) {
      if (is_true(view.attribute("tabSelected"))) part.set_attribute(view, "tabSelected", "0");
    }
    if (!part.is_changed()) return nullptr;
    return std::make_unique<ChangedHead>(part.changed_text(), head.size(), std::move(content));
  }
  throw WorkbookError("its part '" + name +
                      "' has too much in front of its cells; open the workbook in a spreadsheet " +
                      "program and save it again");
}

// One program trusts the results beside formulas, whatever the workbook asks for, where a program that it knows is
// named as the one that saved it last.
std::optional<PartChange> without_saved_by(const Package& package) {
  const Relations relations(package, {});
  const Relation* const properties = relations.first("extended-properties");
  if (properties == nullptr || !package.has(properties->target)) return std::nullopt;
  XmlPart part(properties->target, package.read(properties->target));
  for (const auto program : part.children(part.root(), "Application")) part.remove(program);
  if (!part.is_changed()) return std::nullopt;
  return PartChange{part.name(), text_stream(part.changed_text())};
}

class OoxmlWorkbook : public WorkbookFile {
 public:
  explicit OoxmlWorkbook(std::string bytes);
  const std::vector<std::string>& sheet_names() const override { return sheet_names_; }
  bool counts_from_1904() const override { return counts_from_1904_; }
  SheetLimits limits() const override { return kLimits; }
  std::string with_sheet(const Sheet& sheet) const override;
  std::string with_content(std::size_t position, const Sheet& sheet, std::span<const SheetMark> marks) const override;
  void require_exchangeable(std::size_t position, std::span<const SheetMark> marks) const override {
    const WorkbookPart workbook(workbook_name_, package_.read(workbook_name_));
    static_cast<void>(frame_of(position, workbook, Relations(package_, workbook_name_), marks));
  }

 private:
  std::string find_workbook() const;
  std::string free_part(const ContentTypes& types, const std::string& stem, std::size_t first) const;
  StylePart styles_of(const Dialect& dialect, Relations& relations, ContentTypes& types) const;
  void deselect_all(const WorkbookPart& workbook, const Relations& relations, std::vector<PartChange>& changes) const;
  SheetFrame frame_of(std::size_t position, const WorkbookPart& workbook, const Relations& relations,
                      std::span<const SheetMark> marks) const;

  std::string bytes_;
  Package package_;
  std::string workbook_name_;
  std::vector<std::string> sheet_names_;
  bool counts_from_1904_;
};

OoxmlWorkbook::OoxmlWorkbook(std::string bytes)
    : bytes_(std::move(bytes)), package_(bytes_), workbook_name_(find_workbook()) {
  const WorkbookPart workbook(workbook_name_, package_.read(workbook_name_));
  if (Relations(package_, workbook_name_).first("revisionHeaders") != nullptr)
    throw WorkbookError("it's shared and keeps a history of changes; stop sharing it first");
  sheet_names_ = workbook.sheet_names();
  counts_from_1904_ = workbook.counts_from_1904();
}

// Raises WorkbookError for everything that isn't a workbook or mustn't be changed.
std::string OoxmlWorkbook::find_workbook() const {
  const Relations relations(package_, {});
  const bool is_signed = std::ranges::count(relations.all(), kOrigin, &Relation::kind) != 0;
  if (is_signed || package_.has_folder("_xmlsignatures/"))
    throw WorkbookError("it's digitally signed, and a change would break the signature; remove the signature first");
  const Relation* workbook = relations.first("officeDocument");
  if ((workbook == nullptr || !package_.has(workbook->target)) && package_.has_backslashes())
    throw WorkbookError("its zip file parts the folders in its names by backslashes, which the format doesn't allow; " +
                        std::string("open the workbook in a spreadsheet program and save it again"));
  const std::string type = workbook == nullptr ? std::string() : ContentTypes(package_).of(workbook->target);
  if (type == kBinaryType)
    throw WorkbookError(
        "it's a binary workbook (.xlsb), to which no sheet can be added; save it as .xlsx or .xlsm first");
  if (workbook == nullptr || std::ranges::count(kWorkbookTypes, type) == 0)
    throw WorkbookError("it's a zip file, but not a workbook (.xlsx, .xlsm)");
  return workbook->target;
}

// `stem`N.xml that isn't taken, for N from `first`; `stem`.xml for 0.
std::string OoxmlWorkbook::free_part(const ContentTypes& types, const std::string& stem, std::size_t first) const {
  for (std::size_t number = first;; ++number) {
    std::string name = stem + (number == 0 ? "" : std::to_string(number)) + ".xml";
    if (!package_.has(name) && !types.names(name)) return name;
  }
}

void OoxmlWorkbook::deselect_all(const WorkbookPart& workbook, const Relations& relations,
                                 std::vector<PartChange>& changes) const {
  std::unordered_set<std::string> seen;
  std::size_t budget = kLargestHeads;
  for (const std::string& id : workbook.sheet_relations()) {
    const std::string name = relations.target(id);
    if (!package_.has(name) || !seen.insert(lower(name)).second) continue;
    if (auto content = without_selection(package_, name, workbook.dialect().main, budget))
      changes.push_back({name, std::move(content)});
  }
}

// A missing part is made, and referred to.
StylePart OoxmlWorkbook::styles_of(const Dialect& dialect, Relations& relations, ContentTypes& types) const {
  const Relation* known = relations.first("styles");
  const bool is_told = known != nullptr && !known->target.empty();
  // Where some readers look for it, whatever the references say.
  const std::string name = is_told ? known->target : free_part(types, folder_of(workbook_name_) + "styles", 0);
  if (package_.has(name)) return StylePart(name, package_.read(name));
  if (!is_told) relations.add(dialect, "styles", name);
  if (!types.names(name)) types.add(name, kStylesType);
  return StylePart(name, no_styles(dialect.main));
}

std::string OoxmlWorkbook::with_sheet(const Sheet& sheet) const {
  WorkbookPart workbook(workbook_name_, package_.read(workbook_name_));
  Relations relations(package_, workbook_name_);
  // What an old sheet names though it isn't there mustn't become the new one.
  relations.keep_free(workbook.named_relations());
  ContentTypes types(package_);
  const Dialect& dialect = workbook.dialect();

  std::vector<PartChange> changes;
  deselect_all(workbook, relations, changes);

  StylePart styles = styles_of(dialect, relations, types);
  std::vector<std::uint32_t> formats = styles.formats_of(sheet.styles);
  const std::string sheet_name = free_part(types, folder_of(workbook_name_) + "worksheets/sheet", 1);
  types.add(sheet_name, kSheetType);
  workbook.add_sheet(sheet, relations.add(dialect, "worksheet", sheet_name));
  changes.push_back({sheet_name, sheet_stream(sheet, std::move(formats), new_frame(dialect.main, workbook.views()))});
  changes.push_back(styles.change());
  changes.push_back(workbook.change());
  changes.push_back(relations.change());
  changes.push_back(types.change());
  return package_.with(std::move(changes));
}

SheetFrame OoxmlWorkbook::frame_of(std::size_t position, const WorkbookPart& workbook, const Relations& relations,
                                   std::span<const SheetMark> marks) const {
  const std::string& name = sheet_names_.at(position);
  const std::string part = relations.target(workbook.sheet_relation(position));
  const auto is_same = [&](const std::string& id) { return lower(relations.target(id)) == lower(part); };
  if (std::ranges::count_if(workbook.sheet_relations(), is_same) > 1)
    raise_not_exchanged(name, "another sheet has the same content; copy what you need and remove one of them");
  const Relation* const texts = relations.first("sharedStrings");
  return kept_frame(package_, workbook.dialect(),
                    {.name = name, .part = part, .texts = texts == nullptr ? std::string() : texts->target}, marks);
}

std::string OoxmlWorkbook::with_content(std::size_t position, const Sheet& sheet,
                                        std::span<const SheetMark> marks) const {
  WorkbookPart workbook(workbook_name_, package_.read(workbook_name_));
  Relations relations(package_, workbook_name_);
  relations.keep_free(workbook.named_relations());
  ContentTypes types(package_);
  SheetFrame frame = frame_of(position, workbook, relations, marks);

  std::vector<PartChange> changes;
  StylePart styles = styles_of(workbook.dialect(), relations, types);
  std::vector<std::uint32_t> formats = styles.formats_of(sheet.styles);
  workbook.exchange_content(sheet, position);
  changes.push_back(
      {relations.target(workbook.sheet_relation(position)), sheet_stream(sheet, std::move(formats), std::move(frame))});
  if (auto properties = without_saved_by(package_)) changes.push_back(std::move(*properties));
  // What the old content had as well stays as it's stored.
  PartChange others[] = {styles.change(), workbook.change(), relations.change(), types.change()};
  for (PartChange& change : others) {
    std::string text(change.content->next());
    if (!package_.has(change.name) || package_.read(change.name) != text)
      changes.push_back({change.name, text_stream(std::move(text))});
  }
  return package_.with(std::move(changes));
}

// The zip file without an entry.
constexpr std::string_view kEmptyZip("PK\5\6\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 22);

constexpr std::pair<const char*, const char*> kEmptyWorkbook[] = {
    {"[Content_Types].xml",
     R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" ContentType="application/xml"/><Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/></Types>)"},
    {"_rels/.rels",
     R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"><Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target="xl/workbook.xml"/></Relationships>)"},
    {"xl/workbook.xml",
     R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships"><bookViews><workbookView/></bookViews><sheets></sheets></workbook>)"},
};

}  // namespace

std::string empty_ooxml() {
  std::vector<PartChange> parts;
  for (const auto& [name, xml] : kEmptyWorkbook) parts.push_back({name, text_stream(xml)});
  return Package(kEmptyZip).with(std::move(parts));
}

std::unique_ptr<WorkbookFile> open_ooxml(std::string bytes) {
  return std::make_unique<OoxmlWorkbook>(std::move(bytes));
}

}  // namespace trvtrout::spreadsheet
