#include "spreadsheet/opc/xml_part.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "spreadsheet/workbook_file.h"

// The parser tells where each element's name stands in the text. From there the text is scanned for the ends of tags;
// as the parser has accepted it, quotes are paired and no end is missing.

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr int kDeepest = 256;
constexpr int kMostAttributes = 64;
constexpr std::string_view kBlanks = " \t\r\n";

// Bounds what a lookup costs and how deep a recursion goes.
struct Sanity : pugi::xml_tree_walker {
  bool for_each(pugi::xml_node& node) override {
    int attributes = 0;
    for (auto attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute()) ++attributes;
    return depth() <= kDeepest && attributes <= kMostAttributes;
  }
};

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool is_told_right(std::string_view encoding, XmlEncoding found) {
  const auto equals = [&](std::string_view name) {
    return std::ranges::equal(encoding, name, [](char left, char right) { return (left | 0x20) == (right | 0x20); });
  };
  if (encoding.empty()) return true;
  if (found != XmlEncoding::kUtf8) return equals("utf-16");
  return equals("utf-8") || equals("us-ascii") || equals("ascii");
}

}  // namespace

std::string_view local_name(std::string_view name) { return name.substr(name.find(':') + 1); }

std::string_view prefix_of(std::string_view name) {
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

bool is_true(pugi::xml_attribute attribute) {
  const std::string_view value = trimmed(attribute.value());
  return value == "1" || value == "true";
}

std::optional<std::uint32_t> whole_number(pugi::xml_attribute attribute) {
  const std::string_view value = trimmed(attribute.value());
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size()) return std::nullopt;
  return number;
}

XmlPart::XmlPart(std::string name, std::string text, XmlExtent extent)
    : name_(std::move(name)), encoding_(encoding_of(text)), text_(std::move(text)) {
  decode(extent);
  constexpr unsigned kFlags = pugi::parse_full;
  const auto result = document_.load_buffer(text_.data(), text_.size(), kFlags, pugi::encoding_utf8);
  if (!result && extent == XmlExtent::kWhole)
    raise(std::string(result.description()) + " at byte " + std::to_string(result.offset));
  check_document();
}

void XmlPart::decode(XmlExtent extent) {
  auto result = decoded(text_, encoding_);
  if (!result || (extent == XmlExtent::kWhole && !result->rest.empty())) raise("it has half a character");
  rest_ = result->rest;
  text_ = std::move(result->text);
  if (std::string_view(text_).substr(0, 4).find('\0') != std::string_view::npos)
    raise("it's in UTF-16 without a byte order mark, or in another encoding");
}

void XmlPart::check_document() const {
  for (const auto node : document_.children()) {
    if (node.type() == pugi::node_doctype) raise("it has a document type declaration");
    if (node.type() == pugi::node_declaration && !is_told_right(node.attribute("encoding").value(), encoding_))
      raise("its encoding isn't UTF-8 or UTF-16, or isn't the one that it declares");
  }
  if (!root()) raise("it has no element");
  Sanity sanity;
  pugi::xml_node document = document_;
  if (!document.traverse(sanity)) raise("its elements are nested too deeply or have too many attributes");
}

void XmlPart::raise(const std::string& reason) const {
  throw WorkbookError("its part '" + name_ + "' can't be used: " + reason +
                      "; open the workbook in a spreadsheet program and save it again");
}

std::string XmlPart::prefix() const {
  const std::string_view prefix = prefix_of(root().name());
  return prefix.empty() ? std::string() : std::string(prefix) + ':';
}

std::string_view XmlPart::namespace_of(pugi::xml_node element, std::string_view prefix) {
  const std::string declaration = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
  for (; element; element = element.parent()) {
    const auto attribute = element.attribute(declaration.c_str());
    if (attribute) return attribute.value();
  }
  return {};
}

std::string_view XmlPart::namespace_of(pugi::xml_node element) const {
  return namespace_of(element, prefix_of(element.name()));
}

bool XmlPart::is_element(pugi::xml_node node, std::string_view local, std::string_view space) const {
  return node.type() == pugi::node_element && (local.empty() || local_name(node.name()) == local) &&
         namespace_of(node) == (space.empty() ? namespace_of(root()) : space);
}

std::vector<pugi::xml_node> XmlPart::children(pugi::xml_node parent, std::string_view local,
                                              std::string_view space) const {
  std::vector<pugi::xml_node> found;
  for (const auto node : parent.children()) {
    if (is_element(node, local, space)) found.push_back(node);
  }
  return found;
}

pugi::xml_node XmlPart::child(pugi::xml_node parent, std::string_view local, std::string_view space) const {
  const auto found = children(parent, local, space);
  return found.empty() ? pugi::xml_node() : found.front();
}

// Of an element its name, of anything else its content, but of an instruction its name.
std::size_t XmlPart::begin_of(pugi::xml_node node) const {
  const auto offset = node.offset_debug();
  if (offset < 0) raise("a part of it can't be found again");
  return static_cast<std::size_t>(offset);
}

std::size_t XmlPart::find(std::string_view what, std::size_t from) const {
  const std::size_t at = text_.find(what, from);
  if (at == std::string::npos) raise("an element doesn't end");
  return at;
}

std::size_t XmlPart::start_tag_end(pugi::xml_node element) const {
  std::size_t at = begin_of(element);
  while (true) {
    at = text_.find_first_of("\"'>", at);
    if (at == std::string::npos) raise("a tag doesn't end");
    if (text_[at] == '>') return at + 1;
    at = find(std::string_view(text_).substr(at, 1), at + 1) + 1;
  }
}

bool XmlPart::is_empty_tag(pugi::xml_node element) const { return text_[start_tag_end(element) - 2] == '/'; }

std::size_t XmlPart::end_tag_begin(pugi::xml_node element) const {
  const auto last = element.last_child();
  return find("</", last ? end_of(last) : start_tag_end(element));
}

std::size_t XmlPart::end_of(pugi::xml_node node) const {
  const std::size_t begin = begin_of(node);
  switch (node.type()) {
    case pugi::node_element:
      return is_empty_tag(node) ? start_tag_end(node) : find(">", end_tag_begin(node)) + 1;
    case pugi::node_cdata:
      return find("]]>", begin) + 3;
    case pugi::node_comment:
      return find("-->", begin) + 3;
    case pugi::node_pi:
    case pugi::node_declaration:
      return find("?>", begin) + 2;
    default:
      return find("<", begin);
  }
}

std::string_view XmlPart::source(pugi::xml_node element) const {
  const std::size_t begin = begin_of(element) - 1;
  return std::string_view(text_).substr(begin, end_of(element) - begin);
}

std::string_view XmlPart::start_tag(pugi::xml_node element) const {
  const std::size_t begin = begin_of(element) - 1;
  return std::string_view(text_).substr(begin, start_tag_end(element) - begin);
}

void XmlPart::set_attribute(pugi::xml_node element, std::string_view attribute, std::string_view value) {
  const std::size_t begin = begin_of(element);
  const std::size_t end = start_tag_end(element);
  const std::size_t name_end = begin + std::strlen(element.name());
  std::size_t at = name_end;
  while ((at = text_.find_first_not_of(kBlanks, at)) < end && text_[at] != '/' && text_[at] != '>') {
    const std::string_view name = std::string_view(text_).substr(at, text_.find_first_of(" \t\r\n=", at) - at);
    const std::size_t open = text_.find_first_of("\"'", at + name.size());
    if (open >= end) break;
    const std::size_t close = find(std::string_view(text_).substr(open, 1), open + 1);
    if (name == attribute) {
      splices_.push_back({open + 1, close - open - 1, std::string(value)});
      return;
    }
    at = close + 1;
  }
  splices_.push_back({name_end, 0, ' ' + std::string(attribute) + "=\"" + std::string(value) + '"'});
}

void XmlPart::insert_before(pugi::xml_node element, std::string_view xml) {
  splices_.push_back({begin_of(element) - 1, 0, std::string(xml)});
}

void XmlPart::append(pugi::xml_node element, std::string_view xml) {
  const auto found = std::ranges::find(appended_, element, &std::pair<pugi::xml_node, std::string>::first);
  if (found == appended_.end()) {
    appended_.emplace_back(element, xml);
  } else {
    found->second += xml;
  }
}

void XmlPart::remove(pugi::xml_node element) {
  const std::size_t begin = begin_of(element) - 1;
  splices_.push_back({begin, end_of(element) - begin, {}});
}

std::string XmlPart::changed_text() const {
  std::vector<Splice> splices = splices_;
  for (const auto& [element, xml] : appended_) {
    if (is_empty_tag(element)) {
      splices.push_back({start_tag_end(element) - 2, 2, '>' + xml + "</" + element.name() + '>'});
    } else {
      splices.push_back({end_tag_begin(element), 0, xml});
    }
  }
  // What is put in front of a removed element comes before the removal.
  std::ranges::stable_sort(splices, {}, [](const Splice& splice) { return std::pair(splice.offset, splice.length); });
  std::string out;
  std::size_t at = 0;
  for (const auto& [offset, length, text] : splices) {
    out.append(text_, at, offset - at).append(text);
    at = offset + length;
  }
  return encoded(std::move(out.append(text_, at)), encoding_) + rest_;
}

}  // namespace trvtrout::spreadsheet::ooxml
