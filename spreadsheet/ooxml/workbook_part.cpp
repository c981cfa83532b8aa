#include "spreadsheet/ooxml/workbook_part.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <utility>

#include "spreadsheet/opc/xml_text.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::uint32_t kGreatestSheetId = 65534;

// What the format puts behind the defined names.
constexpr std::string_view kBehindNames[] = {
    "calcPr",        "oleSize",       "customWorkbookViews", "pivotCaches",       "smartTagPr",
    "smartTagTypes", "webPublishing", "fileRecoveryPr",      "webPublishObjects", "extLst",
};
constexpr std::span<const std::string_view> kBehindCalculation = std::span(kBehindNames).subspan(1);

// As one other program calls it too.
constexpr std::string_view kFilterNames[] = {"_xlnm._FilterDatabase", "_FilterDatabase"};

std::string quoted(std::string_view sheet) {
  std::string out = "'";
  for (const char character : sheet) out.append(character == '\'' ? 2 : 1, character);
  return out + '\'';
}

std::uint32_t free_sheet_id(const std::vector<pugi::xml_node>& sheets) {
  std::unordered_set<std::uint32_t> taken;
  std::uint32_t greatest = 0;
  for (const auto sheet : sheets) {
    const std::uint32_t id = number_of(sheet.attribute("sheetId"));
    taken.insert(id);
    greatest = std::max(greatest, id);
  }
  if (greatest < kGreatestSheetId) return greatest + 1;
  std::uint32_t id = 1;
  while (taken.contains(id)) ++id;
  return id;
}

// The prefix that stands for `space` at `element`; empty if none does.
std::string_view prefix_for(pugi::xml_node element, std::string_view space) {
  for (auto scope = element; scope; scope = scope.parent()) {
    for (const auto attribute : scope.attributes()) {
      const std::string_view name = attribute.name();
      if (prefix_of(name) == "xmlns" && attribute.value() == space &&
          XmlPart::namespace_of(element, local_name(name)) == space)
        return local_name(name);
    }
  }
  return {};
}

constexpr std::string_view kNumbered[] = {"sheets", "bookViews", "definedNames"};

bool is_numbered(pugi::xml_node node) { return std::ranges::count(kNumbered, local_name(node.name())) != 0; }

// Whether it depends on the program that reads it what a list of sheets, or of what has their numbers, holds.
bool is_uncertain(const XmlPart& part, pugi::xml_node node) {
  return part.is_alternatives(node) && (is_numbered(node.parent()) || node.find_node(is_numbered));
}

}  // namespace

WorkbookPart::WorkbookPart(std::string name, std::string text) : part_(std::move(name), std::move(text)) {
  const auto root = part_.root();
  const auto found = std::ranges::find(kDialects, part_.namespace_of(root), &Dialect::main);
  list_ = part_.child(root, "sheets");
  if (found == kDialects.end() || local_name(root.name()) != "workbook" || !list_)
    throw WorkbookError("its part '" + part_.name() + "' doesn't list the sheets of a workbook as it should; open it " +
                        "in a spreadsheet program and save it again");
  dialect_ = &*found;
  sheets_ = part_.children(list_, "sheet");
  if (root.find_node([this](pugi::xml_node node) { return is_uncertain(part_, node); }))
    throw WorkbookError("its part '" + part_.name() +
                        "' has alternatives (mc:AlternateContent) in its lists, so that " +
                        "its sheets can't be numbered for sure; open it in a spreadsheet program and save it again");
  for (const auto sharing : part_.children(root, "fileSharing")) {
    if (sharing.attribute("reservationPassword") || sharing.attribute("hashValue"))
      throw WorkbookError("it asks for a password before it is changed; remove the password first");
  }
  for (const auto protection : part_.children(root, "workbookProtection")) {
    if (is_true(protection.attribute("lockStructure")))
      throw WorkbookError("its structure is protected, so no sheet can be added; remove the protection first");
  }
}

std::vector<std::string> WorkbookPart::sheet_names() const {
  std::vector<std::string> names;
  for (const auto sheet : sheets_) names.push_back(without_escapes(sheet.attribute("name").value()));
  return names;
}

std::string WorkbookPart::sheet_relation(std::size_t position) const {
  const auto sheet = sheets_.at(position);
  for (const auto attribute : sheet.attributes()) {
    const std::string_view name = attribute.name();
    if (local_name(name) == "id" && !prefix_of(name).empty() &&
        XmlPart::namespace_of(sheet, prefix_of(name)) == dialect_->relations)
      return attribute.value();
  }
  return {};
}

std::vector<std::string> WorkbookPart::sheet_relations() const {
  std::vector<std::string> ids;
  for (std::size_t position = 0; position < sheets_.size(); ++position) ids.push_back(sheet_relation(position));
  return ids;
}

std::unordered_set<std::string> WorkbookPart::named_relations() const {
  std::unordered_set<std::string> ids;
  part_.root().find_node([&ids](pugi::xml_node node) {
    for (const auto attribute : node.attributes())
      if (std::string_view(attribute.value()).starts_with(kRelationId)) ids.emplace(attribute.value());
    return false;
  });
  return ids;
}

bool WorkbookPart::counts_from_1904() const {
  return is_true(part_.child(part_.root(), "workbookPr").attribute("date1904"));
}

std::size_t WorkbookPart::views() const {
  return part_.children(part_.child(part_.root(), "bookViews"), "workbookView").size();
}

std::size_t WorkbookPart::active() const {
  const auto view = part_.child(part_.child(part_.root(), "bookViews"), "workbookView");
  const std::size_t tab = number_of(view.attribute("activeTab"));
  return sheets_.empty() ? 0 : std::min(tab, sheets_.size() - 1);
}

std::string WorkbookPart::sheet_element(const Sheet& sheet, const std::string& relation) const {
  std::string prefix(prefix_for(list_, dialect_->relations));
  std::string declaration;
  if (prefix.empty()) {
    prefix = part_.prefix() == "r:" ? "rel" : "r";
    declaration = " xmlns:" + prefix + "=\"" + std::string(dialect_->relations) + '"';
  }
  return '<' + part_.prefix() + "sheet" + declaration + " name=" + xml_attribute(sheet.name) + " sheetId=\"" +
         std::to_string(free_sheet_id(sheets_)) + "\" " + prefix + ":id=\"" + relation + "\"/>";
}

void WorkbookPart::add_sheet(const Sheet& sheet, const std::string& relation) {
  const std::size_t position = active();
  const std::string element = sheet_element(sheet, relation);
  if (sheets_.empty()) {
    part_.append(list_, element);
  } else {
    part_.insert_before(sheets_[position], element);
  }
  show(position);
  shift_names(position);
  if (sheet.has_filter && sheet.rows() != 0) add_name(filter_name(sheet.name, sheet.rows(), position));
}

void WorkbookPart::exchange_content(const Sheet& sheet, std::size_t position) {
  std::string name;
  if (sheet.has_filter && sheet.rows() != 0) name = filter_name(sheet_names().at(position), sheet.rows(), position);
  for (const auto old : part_.children(part_.child(part_.root(), "definedNames"), "definedName")) {
    const bool is_filter = std::ranges::count(kFilterNames, std::string_view(old.attribute("name").value())) != 0;
    if (!is_filter || whole_number(old.attribute("localSheetId")) != position) continue;
    if (!name.empty()) part_.insert_before(old, std::exchange(name, {}));
    part_.remove(old);
  }
  if (!name.empty()) add_name(name);
  recalculate();
}

// Programs trust the results that stand beside formulas, also of those that refer to the sheet.
void WorkbookPart::recalculate() {
  if (const auto calculation = part_.child(part_.root(), "calcPr")) {
    if (!is_true(calculation.attribute("fullCalcOnLoad"))) part_.set_attribute(calculation, "fullCalcOnLoad", "1");
  } else {
    add_to_root('<' + part_.prefix() + "calcPr fullCalcOnLoad=\"1\"/>", kBehindCalculation);
  }
}

// Where no view tells it, the first sheet is active, and stays so.
void WorkbookPart::show(std::size_t position) {
  for (const auto view : part_.children(part_.child(part_.root(), "bookViews"), "workbookView")) {
    const std::string shown = std::to_string(position);
    const auto active_tab = view.attribute("activeTab");
    if (active_tab ? whole_number(active_tab) != position : position != 0)
      part_.set_attribute(view, "activeTab", shown);
    // The tabs to the left of the first one aren't in sight.
    if (number_of(view.attribute("firstSheet")) > position) part_.set_attribute(view, "firstSheet", shown);
  }
}

void WorkbookPart::shift_names(std::size_t position) {
  for (const auto name : part_.children(part_.child(part_.root(), "definedNames"), "definedName")) {
    const auto number = whole_number(name.attribute("localSheetId"));
    if (number && *number >= position)
      part_.set_attribute(name, "localSheetId", std::to_string(std::uint64_t{*number} + 1));
  }
}

std::string WorkbookPart::filter_name(const std::string& sheet_name, std::size_t rows, std::size_t position) const {
  const std::string prefix = part_.prefix();
  std::string name = '<' + prefix + "definedName name=\"" + std::string(kFilterNames[0]) + "\" localSheetId=\"" +
                     std::to_string(position) + "\" hidden=\"1\">";
  append_xml_text(name, quoted(sheet_name) + "!$A$1:$A$" + std::to_string(rows));
  return name + "</" + prefix + "definedName>";
}

void WorkbookPart::add_name(const std::string& name) {
  const std::string prefix = part_.prefix();
  if (const auto names = part_.child(part_.root(), "definedNames")) {
    part_.append(names, name);
  } else {
    add_to_root('<' + prefix + "definedNames>" + name + "</" + prefix + "definedNames>", kBehindNames);
  }
}

void WorkbookPart::add_to_root(const std::string& element, std::span<const std::string_view> behind) {
  for (const auto node : part_.root().children()) {
    const bool own = node.type() == pugi::node_element && part_.namespace_of(node) == dialect_->main;
    if (own && std::ranges::count(behind, local_name(node.name())) != 0) {
      part_.insert_before(node, element);
      return;
    }
  }
  part_.append(part_.root(), element);
}

PartChange WorkbookPart::change() const { return {part_.name(), text_stream(part_.changed_text())}; }

}  // namespace trvtrout::spreadsheet::ooxml
