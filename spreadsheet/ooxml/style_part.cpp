#include "spreadsheet/ooxml/style_part.h"

#include <algorithm>
#include <array>
#include <utility>

#include "spreadsheet/number_formats.h"
#include "spreadsheet/opc/xml_text.h"
#include "spreadsheet/workbook_file.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr std::size_t kMostCellFormats = 64000;
// The number of palette entry 1.
constexpr std::uint32_t kFirstPaletteColor = 8;

// In the order that the format wants them.
constexpr std::array<std::string_view, 11> kLists = {
    "numFmts",    "fonts", "fills",       "borders", "cellStyleXfs", "cellXfs",
    "cellStyles", "dxfs",  "tableStyles", "colors",  "extLst",
};

std::string attribute(std::string_view name, std::uint32_t value) {
  return ' ' + std::string(name) + "=\"" + std::to_string(value) + '"';
}

pugi::xml_node child_element(const XmlPart& part, std::initializer_list<std::string_view> names) {
  for (const auto node : part.root().children()) {
    if (node.type() == pugi::node_element && std::ranges::count(names, local_name(node.name())) != 0) return node;
  }
  return {};
}

// A font like `font`, but bold or in a colour of the palette.
std::string changed_font(const std::string& font, const std::string& prefix, const CellStyle& style) {
  XmlPart part("font", font);
  const auto replace = [&](std::string_view name, const std::string& xml, pugi::xml_node successor) {
    if (const auto old = child_element(part, {name})) part.remove(old);
    if (successor) {
      part.insert_before(successor, xml);
    } else {
      part.append(part.root(), xml);
    }
  };
  // The order of the children is what some readers insist on.
  const auto name = child_element(part, {"name", "family", "charset", "scheme", "extLst"});
  const auto first = part.root().find_child([](pugi::xml_node node) { return node.type() == pugi::node_element; });
  if (style.bold) replace("b", '<' + prefix + "b/>", first);
  if (style.color_index != 0)
    replace("color", '<' + prefix + "color" + attribute("indexed", style.color_index + kFirstPaletteColor - 1) + "/>",
            name);
  return part.changed_text();
}

}  // namespace

StyleList::StyleList(XmlPart& part, std::string_view list, std::string_view item)
    : part_(part), name_(list), list_(part.child(part.root(), list)) {
  for (const auto node : part_.children(list_, item)) items_.emplace_back(part_.source(node));
  written_ = items_.size();
}

std::uint32_t StyleList::number(const std::string& xml) {
  const auto found = std::ranges::find(items_, xml);
  const auto number = static_cast<std::uint32_t>(found - items_.begin());
  if (found == items_.end()) items_.push_back(xml);
  return number;
}

void StyleList::complete(const std::string& xml) {
  if (items_.empty()) items_.push_back(xml);
}

void StyleList::write() {
  if (written_ == items_.size()) return;
  std::string added;
  for (std::size_t number = std::exchange(written_, items_.size()); number < items_.size(); ++number)
    added += items_[number];
  if (list_) {
    part_.append(list_, added);
    if (list_.attribute("count")) part_.set_attribute(list_, "count", std::to_string(items_.size()));
    return;
  }
  const std::string name = part_.prefix() + name_;
  added = '<' + name + attribute("count", static_cast<std::uint32_t>(items_.size())) + '>' + added + "</" + name + '>';
  for (auto later = std::ranges::find(kLists, name_) + 1; later != kLists.end(); ++later) {
    if (const auto successor = part_.child(part_.root(), *later)) {
      part_.insert_before(successor, added);
      return;
    }
  }
  part_.append(part_.root(), added);
}

StylePart::StylePart(std::string name, std::string text)
    : part_(std::move(name), std::move(text)),
      prefix_(part_.prefix()),
      basis_(part_.child(part_.child(part_.root(), "cellXfs"), "xf")),
      number_formats_(part_, "numFmts", "numFmt"),
      fonts_(part_, "fonts", "font"),
      fills_(part_, "fills", "fill"),
      borders_(part_, "borders", "border"),
      named_formats_(part_, "cellStyleXfs", "xf"),
      cell_formats_(part_, "cellXfs", "xf") {
  if (local_name(part_.root().name()) != "styleSheet")
    throw WorkbookError("its part '" + part_.name() + "' doesn't hold styles as it should; open the workbook in a " +
                        "spreadsheet program and save it again");
  read_number_formats();
  const std::string& p = prefix_;
  fonts_.complete('<' + p + "font><" + p + "sz val=\"11\"/><" + p + "name val=\"Calibri\"/></" + p + "font>");
  if (fills_.items().empty()) {
    for (const std::string pattern : {"none", "gray125"})
      fills_.number('<' + p + "fill><" + p + "patternFill patternType=\"" + pattern + "\"/></" + p + "fill>");
  }
  borders_.complete('<' + p + "border/>");
  named_formats_.complete('<' + p + "xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/>");
  cell_formats_.complete('<' + p + "xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>");
}

void StylePart::read_number_formats() {
  for (const auto format : part_.children(part_.child(part_.root(), "numFmts"), "numFmt")) {
    const std::uint32_t number = number_of(format.attribute("numFmtId"));
    format_numbers_.emplace(without_escapes(format.attribute("formatCode").value()), number);
    if (number < UINT32_MAX) free_number_format_ = std::max(free_number_format_, number + 1);
  }
}

std::uint32_t StylePart::number_format(const std::string& format) {
  if (const auto reserved = reserved_number_format(format)) return *reserved;
  const auto [place, is_new] = format_numbers_.emplace(format, free_number_format_);
  if (is_new) {
    number_formats_.number('<' + prefix_ + "numFmt" + attribute("numFmtId", free_number_format_++) +
                           " formatCode=" + xml_attribute(format) + "/>");
  }
  return place->second;
}

std::uint32_t StylePart::font(const CellStyle& style) {
  const std::uint32_t told = number_of(basis_.attribute("fontId"));
  const std::uint32_t plain = told < fonts_.items().size() ? told : 0;
  if (!style.bold && style.color_index == 0) return plain;
  return fonts_.number(changed_font(fonts_.items()[plain], prefix_, style));
}

std::uint32_t StylePart::format_of(const CellStyle& style) {
  if (style == CellStyle{} && number_of(basis_.attribute("numFmtId")) == 0) return 0;
  std::string format = '<' + prefix_ + "xf" + attribute("numFmtId", number_format(style.number_format)) +
                       attribute("fontId", font(style)) + attribute("fillId", number_of(basis_.attribute("fillId"))) +
                       attribute("borderId", number_of(basis_.attribute("borderId"))) +
                       attribute("xfId", number_of(basis_.attribute("xfId"))) +
                       " applyNumberFormat=\"1\" applyFont=\"1\"";
  format +=
      style.left ? " applyAlignment=\"1\"><" + prefix_ + "alignment horizontal=\"left\"/></" + prefix_ + "xf>" : "/>";
  const std::uint32_t number = cell_formats_.number(format);
  if (number >= kMostCellFormats)
    throw WorkbookError("it has 64,000 cell formats, the most that a workbook can have; delete some of them first");
  return number;
}

std::vector<std::uint32_t> StylePart::formats_of(const std::vector<CellStyle>& styles) {
  std::vector<std::uint32_t> formats;
  formats.reserve(styles.size());
  for (const CellStyle& style : styles) formats.push_back(format_of(style));
  return formats;
}

PartChange StylePart::change() {
  for (StyleList* list : {&number_formats_, &fonts_, &fills_, &borders_, &named_formats_, &cell_formats_})
    list->write();
  return {part_.name(), text_stream(part_.changed_text())};
}

std::string no_styles(std::string_view space) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<styleSheet xmlns=\"" + std::string(space) +
         "\"></styleSheet>";
}

}  // namespace trvtrout::spreadsheet::ooxml
