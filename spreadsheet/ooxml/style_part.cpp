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
// Those below are reserved; greater ones some programs don't take.
constexpr std::uint32_t kFirstOwnFormat = 164, kGreatestFormat = 65535;
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

[[noreturn]] void raise_alternatives(const XmlPart& part) {
  throw WorkbookError("its part '" + part.name() + "' has styles in alternatives (mc:AlternateContent) that can't be " +
                      "numbered for sure; open the workbook in a spreadsheet program and save it again");
}

// The items below `parent`. Of alternatives a program takes the first that it knows, or the fallback, which comes last;
// so their items have numbers only where each has as many.
std::vector<StyleItem> items_of(const XmlPart& part, pugi::xml_node parent, std::string_view name) {
  std::vector<StyleItem> items;
  for (const auto node : parent.children()) {
    if (part.is_element(node, name)) items.push_back({std::string(part.source(node)), node});
    if (!part.is_alternatives(node)) continue;
    std::vector<StyleItem> last;
    bool has_fallback = false;
    const auto branches = part.children(node, {}, kAlternativesSpace);
    for (const auto branch : branches) {
      std::vector<StyleItem> found = items_of(part, branch, name);
      if (branch != branches.front() && found.size() != last.size()) raise_alternatives(part);
      has_fallback = local_name(branch.name()) == "Fallback";
      last = std::move(found);
    }
    if (!has_fallback && !last.empty()) raise_alternatives(part);
    for (StyleItem& item : last) items.push_back({std::move(item.xml), item.node, true});
  }
  return items;
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
  const auto is_list = [list](pugi::xml_node node) { return local_name(node.name()) == list; };
  for (const auto node : part.root().children())
    if (part.is_alternatives(node) && node.find_node(is_list)) raise_alternatives(part);
  items_ = items_of(part, list_, item);
  written_ = items_.size();
}

std::uint32_t StyleList::number(const std::string& xml) {
  const auto is_same = [&xml](const StyleItem& item) { return !item.is_alternative && item.xml == xml; };
  const auto found = std::ranges::find_if(items_, is_same);
  const auto number = static_cast<std::uint32_t>(found - items_.begin());
  if (found == items_.end()) items_.push_back({xml, {}});
  return number;
}

void StyleList::complete(const std::string& xml) {
  if (items_.empty()) items_.push_back({xml, {}});
}

void StyleList::write() {
  if (written_ == items_.size()) return;
  std::string added;
  for (std::size_t number = std::exchange(written_, items_.size()); number < items_.size(); ++number)
    added += items_[number].xml;
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
      number_formats_(part_, "numFmts", "numFmt"),
      fonts_(part_, "fonts", "font"),
      fills_(part_, "fills", "fill"),
      borders_(part_, "borders", "border"),
      named_formats_(part_, "cellStyleXfs", "xf"),
      cell_formats_(part_, "cellXfs", "xf"),
      basis_(cell_formats_.items().empty() ? pugi::xml_node() : cell_formats_.items().front().node) {
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
  for (const StyleItem& item : number_formats_.items()) {
    const std::uint32_t number = number_of(item.node.attribute("numFmtId"));
    std::optional<std::string> text = without_escapes(item.node.attribute("formatCode").value());
    if (item.is_alternative) text.reset();
    const auto [known, is_new] = formats_.emplace(number, text);
    if (!is_new && known->second != text) known->second.reset();
  }
  // In all alternatives.
  const auto note = [this](pugi::xml_node node) {
    const auto number = node.attribute("numFmtId");
    if (number) format_numbers_.insert(number_of(number));
    if (number && local_name(node.name()) == "numFmt") formats_.try_emplace(number_of(number));
    return false;
  };
  for (const std::string_view list : {"numFmts", "cellStyleXfs", "cellXfs"})
    part_.child(part_.root(), list).find_node(note);
}

// A workbook may give a reserved number to another format.
bool StylePart::stands_for(std::uint32_t number, const std::string& format) const {
  const auto own = formats_.find(number);
  if (own == formats_.end()) return reserved_number_format(format) == number;
  return own->second == format || (own->second && format == "General" && lower(*own->second) == "general");
}

// Behind all others, or where there's room between them.
std::uint32_t StylePart::free_number_format() const {
  const std::uint32_t greatest = format_numbers_.empty() ? 0 : *format_numbers_.rbegin();
  if (greatest < kGreatestFormat) return std::max(kFirstOwnFormat, greatest + 1);
  std::uint32_t number = kFirstOwnFormat;
  while (format_numbers_.contains(number)) ++number;
  return number;
}

std::uint32_t StylePart::number_format(const std::string& format) {
  const auto reserved = reserved_number_format(format);
  if (reserved && stands_for(*reserved, format)) return *reserved;
  for (const auto& [number, text] : formats_)
    if (text == format) return number;
  const std::uint32_t number = free_number_format();
  formats_.emplace(number, format);
  format_numbers_.insert(number);
  number_formats_.number('<' + prefix_ + "numFmt" + attribute("numFmtId", number) +
                         " formatCode=" + xml_attribute(format) + "/>");
  return number;
}

std::uint32_t StylePart::font(const CellStyle& style) {
  const std::uint32_t told = number_of(basis_.attribute("fontId"));
  const std::uint32_t plain = told < fonts_.items().size() ? told : 0;
  if (!style.bold && style.color_index == 0) return plain;
  return fonts_.number(changed_font(fonts_.items()[plain].xml, prefix_, style));
}

std::uint32_t StylePart::format_of(const CellStyle& style) {
  const CellStyle plain;
  if (style == plain && stands_for(number_of(basis_.attribute("numFmtId")), plain.number_format)) return 0;
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
