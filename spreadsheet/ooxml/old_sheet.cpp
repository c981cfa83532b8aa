#include "spreadsheet/ooxml/old_sheet.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "spreadsheet/bytes.h"
#include "spreadsheet/exchange.h"
#include "spreadsheet/opc/markup.h"
#include "spreadsheet/opc/xml_encoding.h"
#include "spreadsheet/opc/xml_part.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

// A sheet's text without its rows but for the first one.
struct Outline {
  std::string text;
  std::string_view lost;  // what the cells have that would be lost; empty for nothing
};

class OutlineReader {
 public:
  explicit OutlineReader(PartStream& content) : reader_(content) {}

  Outline read() {
    for (Markup markup; !(markup = reader_.next()).source.empty();) take(markup);
    return std::move(outline_);
  }

 private:
  static constexpr std::size_t kOfRoot = 1, kOfCells = 2;  // the depth in an element

  void take(const Markup& markup) {
    const bool starts = markup.kind == MarkupKind::kStartTag || markup.kind == MarkupKind::kEmptyTag;
    if (markup.kind == MarkupKind::kEndTag && depth_ > 0) --depth_;
    if (depth_ <= kOfRoot) in_cells_ = starts && depth_ == kOfRoot && markup.name() == "sheetData";
    if (in_cells_ && depth_ > kOfCells) note_cell(markup);
    if (starts && in_cells_ && depth_ == kOfCells) ++rows_;
    if (!in_cells_ || depth_ < kOfCells || rows_ <= 1) outline_.text += markup.source;
    if (outline_.text.size() > kLargestXml) raise_damaged("a sheet in it has too much around its cells");
    if (markup.kind == MarkupKind::kStartTag) ++depth_;
  }

  // Some programs save a boolean as a formula, which several cells may share: only one of them then tells it.
  void note_cell(const Markup& markup) {
    if (markup.kind == MarkupKind::kText) {
      if (formula_) *formula_ += markup.source;
      return;
    }
    const std::string_view name = markup.name();
    if (name == "f") {
      if (markup.kind != MarkupKind::kEndTag) shares_ = markup.source.find("shared") != std::string_view::npos;
      const bool is_told = formula_ && !formula_->empty();
      const bool is_boolean = is_told ? formula_ == "TRUE()" || formula_ == "FALSE()" : shares_;
      if (markup.kind != MarkupKind::kStartTag && !is_boolean) outline_.lost = "formulas";
      formula_.reset();
      if (markup.kind == MarkupKind::kStartTag) formula_.emplace();
    }
    if (name == "c" && markup.source.find(" vm=") != std::string_view::npos)
      outline_.lost = "cells with pictures or linked data";
  }

  MarkupReader reader_;
  Outline outline_;
  std::size_t depth_ = 0, rows_ = 0;
  bool in_cells_ = false, shares_ = false;
  std::optional<std::string> formula_;  // as far as it was read
};

// Of a cell or of an item of the shared texts, which may come in runs of one format each.
std::string text_of(pugi::xml_node item) {
  std::string text;
  for (const auto child : item.children()) {
    if (local_name(child.name()) == "t") text += child.text().get();
    if (local_name(child.name()) == "r") text += text_of(child);
  }
  return text;
}

std::string shared_text(const Package& package, const std::string& part, std::uint32_t number) {
  if (!package.has(part)) return {};
  const auto content = package.stream(part);
  MarkupReader reader(*content);
  std::uint32_t items = 0;
  std::string item;
  for (Markup markup; !(markup = reader.next()).source.empty();) {
    const bool is_item = markup.kind != MarkupKind::kText && markup.name() == "si";
    if (is_item && markup.kind == MarkupKind::kStartTag && items++ == number) item = "<si>";
    if (is_item && markup.kind == MarkupKind::kEmptyTag) ++items;
    if (!is_item && !item.empty()) item += markup.source;
    if (item.size() > kLargestXml) raise_damaged("a text in it is too long");
    if (is_item && markup.kind == MarkupKind::kEndTag && !item.empty()) break;
  }
  if (item.empty()) return {};
  const XmlPart parsed(part, item + "</si>");
  return text_of(parsed.root());
}

std::string cell_text(const Package& package, const XmlPart& part, pugi::xml_node cell, const std::string& texts) {
  const std::string_view type = cell.attribute("t").value();
  if (type == "inlineStr") return text_of(part.child(cell, "is"));
  if (type != "s") return {};
  return shared_text(package, texts, part.child(cell, "v").text().as_uint(UINT32_MAX));
}

bool is_marked(const Package& package, const XmlPart& part, const std::string& texts,
               std::span<const SheetMark> marks) {
  const auto row = part.child(part.child(part.root(), "sheetData"), "row");
  for (const auto cell : part.children(row, "c")) {
    const std::string_view place = cell.attribute("r").value();
    const auto is_here = [place](const SheetMark& mark) {
      return place == std::string{static_cast<char>('A' + mark.column), '1'};
    };
    const auto mark = std::ranges::find_if(marks, is_here);
    if (mark != marks.end() && has_mark(marks, mark->column, cell_text(package, part, cell, texts))) return true;
  }
  return false;
}

enum class Fate : std::uint8_t { kHead, kViews, kTail, kExchanged };

// What a sheet may have beside its cells. All else would be lost.
constexpr std::pair<std::string_view, Fate> kFates[] = {
    {"sheetPr", Fate::kHead},
    {"sheetViews", Fate::kViews},
    {"dimension", Fate::kExchanged},
    {"sheetFormatPr", Fate::kExchanged},
    {"cols", Fate::kExchanged},
    {"sheetData", Fate::kExchanged},
    {"autoFilter", Fate::kExchanged},
    {"sortState", Fate::kExchanged},
    {"sheetProtection", Fate::kExchanged},
    {"phoneticPr", Fate::kTail},
    {"printOptions", Fate::kTail},
    {"pageMargins", Fate::kTail},
    {"pageSetup", Fate::kTail},
    {"headerFooter", Fate::kTail},
    {"ignoredErrors", Fate::kTail},
    {"drawing", Fate::kTail},
};

// What the elements and the references to other parts that aren't among them mean to a person.
constexpr std::pair<std::string_view, std::string_view> kLost[] = {
    {"mergeCells", "merged cells"},
    {"conditionalFormatting", "conditional formats"},
    {"dataValidations", "checks of what is typed in"},
    {"hyperlinks", "links"},
    {"hyperlink", "links"},
    {"rowBreaks", "page breaks"},
    {"colBreaks", "page breaks"},
    {"legacyDrawing", "comments"},
    {"comments", "comments"},
    {"drawing", "pictures or charts"},
    {"picture", "a picture in its background"},
    {"image", "a picture in its background"},
    {"tableParts", "tables"},
    {"table", "tables"},
    {"pivotTable", "pivot tables"},
    {"sheetProtection", "a protection"},
};

std::string lost_text(std::string_view name) {
  const auto* found = std::ranges::find(kLost, name, &std::pair<std::string_view, std::string_view>::first);
  return found != std::end(kLost) ? std::string(found->second)
                                  : "things that no new sheet has ('" + std::string(name) + "')";
}

// Settings of a printer don't depend on the content. Some programs give each sheet a drawing, with nothing in it.
void require_no_other_parts(const Package& package, const OldSheet& sheet) {
  const auto is_empty_drawing = [&package](const Relation& relation) {
    if (relation.kind != "drawing" || !package.has(relation.target)) return false;
    const XmlPart drawing(relation.target, package.read(relation.target));
    return !drawing.root().find_child([](pugi::xml_node node) { return node.type() == pugi::node_element; });
  };
  const Relations relations(package, sheet.part);
  for (const Relation& relation : relations.all())
    if (relation.kind != "printerSettings" && !is_empty_drawing(relation))
      raise_would_be_lost(sheet.name, lost_text(relation.kind.substr(relation.kind.rfind('/') + 1)));
}

std::optional<Fate> fate_of(const XmlPart& part, pugi::xml_node element) {
  const std::string_view name = local_name(element.name());
  const auto* found = std::ranges::find(kFates, name, &std::pair<std::string_view, Fate>::first);
  // One that isn't switched on only tells what it would allow.
  const bool is_protected = name == "sheetProtection" && is_true(element.attribute("sheet"));
  if (found == std::end(kFates) || is_protected || !part.is_element(element, name)) return std::nullopt;
  return found->second;
}

// The new rows are all in sight.
std::string without_filter_mode(const std::string& name, const std::string& text) {
  XmlPart part(name, text);
  const auto properties = part.child(part.root(), "sheetPr");
  if (is_true(properties.attribute("filterMode"))) part.set_attribute(properties, "filterMode", "0");
  return part.changed_text();
}

// Elements that are written anew have no prefix.
std::string start_of(const XmlPart& part, const Dialect& dialect, const std::string& sheet) {
  std::string tag(part.start_tag(part.root()));
  if (!part.prefix().empty()) {
    if (part.root().attribute("xmlns"))
      raise_not_exchanged(sheet, "its XML has several default namespaces; save it again in a spreadsheet program");
    tag.insert(tag.size() - 1, " xmlns=\"" + std::string(dialect.main) + '"');
  }
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n" + tag;
}

SheetFrame frame_of(const XmlPart& part, const Dialect& dialect, const std::string& sheet) {
  SheetFrame frame{.head = start_of(part, dialect, sheet), .views = {}, .tail = {}};
  for (const auto element : part.root().children()) {
    if (element.type() != pugi::node_element) continue;
    const auto fate = fate_of(part, element);
    if (!fate) raise_would_be_lost(sheet, lost_text(local_name(element.name())));
    if (*fate == Fate::kHead) frame.head += part.source(element);
    if (*fate == Fate::kViews) frame.views += part.source(element);
    if (*fate == Fate::kTail) frame.tail += part.source(element);
  }
  frame.tail += std::string("</") + part.root().name() + '>';
  return frame;
}

}  // namespace

SheetFrame kept_frame(const Package& package, const Dialect& dialect, const OldSheet& sheet,
                      std::span<const SheetMark> marks) {
  if (!package.has(sheet.part)) raise_foreign(sheet.name);
  if (encoding_of(package.stream(sheet.part)->next()) != XmlEncoding::kUtf8)
    raise_not_exchanged(sheet.name, "its XML is in UTF-16; save it again in a spreadsheet program");
  const Outline outline = OutlineReader(*package.stream(sheet.part)).read();
  const XmlPart part(sheet.part, without_filter_mode(sheet.part, outline.text));
  const bool is_sheet = part.is_element(part.root(), "worksheet", dialect.main);
  if (!is_sheet || !is_marked(package, part, sheet.texts, marks)) raise_foreign(sheet.name);
  if (!outline.lost.empty()) raise_would_be_lost(sheet.name, outline.lost);
  require_no_other_parts(package, sheet);
  return frame_of(part, dialect, sheet.name);
}

}  // namespace trvtrout::spreadsheet::ooxml
