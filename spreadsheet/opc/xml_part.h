#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "spreadsheet/opc/xml_encoding.h"

namespace trvtrout::spreadsheet::ooxml {

// The largest part that is taken whole into memory; larger ones say that something is wrong.
inline constexpr std::size_t kLargestXml = std::size_t{32} << 20;

// Of alternatives, of which a program takes the first that it knows.
inline constexpr std::string_view kAlternativesSpace = "http://schemas.openxmlformats.org/markup-compatibility/2006";

// kHead: the text may end anywhere; what stands before that is there.
enum class XmlExtent { kWhole, kHead };

// A part of somebody's package: read as a tree, changed as a text, so that not a blank changes but what is asked for.
// Nodes belong to the part. Changes don't show in the tree.
class XmlPart {
 public:
  // Raises WorkbookError for anything but sane XML in UTF-8 or UTF-16.
  XmlPart(std::string name, std::string text, XmlExtent extent = XmlExtent::kWhole);
  XmlPart(const XmlPart&) = delete;
  XmlPart& operator=(const XmlPart&) = delete;

  const std::string& name() const { return name_; }
  pugi::xml_node root() const { return document_.document_element(); }
  // "x:" or nothing: what an element of the root's namespace is prefixed with.
  std::string prefix() const;
  // The element's namespace.
  std::string_view namespace_of(pugi::xml_node element) const;
  // What `prefix` stands for at an element; empty if it isn't declared.
  static std::string_view namespace_of(pugi::xml_node element, std::string_view prefix);
  // Whether a node is an element of that name, of any for an empty one, in a namespace, the root's unless said
  // otherwise.
  bool is_element(pugi::xml_node node, std::string_view local_name, std::string_view space = {}) const;
  // Whether a node holds alternatives.
  bool is_alternatives(pugi::xml_node node) const { return is_element(node, "AlternateContent", kAlternativesSpace); }
  // The child elements of that kind.
  std::vector<pugi::xml_node> children(pugi::xml_node parent, std::string_view local_name,
                                       std::string_view space = {}) const;
  // The first of them, null if there's none or no parent.
  pugi::xml_node child(pugi::xml_node parent, std::string_view local_name, std::string_view space = {}) const;
  // An element as it's written.
  std::string_view source(pugi::xml_node element) const;
  std::string_view start_tag(pugi::xml_node element) const;

  // Each attribute of an element can be set once; `value` stands there as it is.
  void set_attribute(pugi::xml_node element, std::string_view attribute, std::string_view value);
  void insert_before(pugi::xml_node element, std::string_view xml);
  // Behind the element's last child.
  void append(pugi::xml_node element, std::string_view xml);
  void remove(pugi::xml_node element);
  bool is_changed() const { return !splices_.empty() || !appended_.empty(); }
  // The text with all changes, in the encoding that it had.
  std::string changed_text() const;

 private:
  struct Splice {
    std::size_t offset, length;
    std::string text;
  };

  void decode(XmlExtent extent);
  void check_document() const;
  std::size_t begin_of(pugi::xml_node node) const;
  std::size_t find(std::string_view what, std::size_t from) const;
  std::size_t start_tag_end(pugi::xml_node element) const;
  std::size_t end_tag_begin(pugi::xml_node element) const;
  std::size_t end_of(pugi::xml_node node) const;
  bool is_empty_tag(pugi::xml_node element) const;
  [[noreturn]] void raise(const std::string& reason) const;

  std::string name_;
  XmlEncoding encoding_;
  std::string text_;  // as UTF-8
  std::string rest_;  // of a head's last character
  pugi::xml_document document_;
  std::vector<Splice> splices_;
  std::vector<std::pair<pugi::xml_node, std::string>> appended_;
};

// A name without its prefix.
std::string_view local_name(std::string_view name);
// The prefix of a name without the colon; empty without one.
std::string_view prefix_of(std::string_view name);

// How XML writes a true boolean.
bool is_true(pugi::xml_attribute attribute);
// Nothing for an attribute that's missing or isn't a number below 2^32.
std::optional<std::uint32_t> whole_number(pugi::xml_attribute attribute);
// The same with 0 for nothing.
inline std::uint32_t number_of(pugi::xml_attribute attribute) { return whole_number(attribute).value_or(0); }

}  // namespace trvtrout::spreadsheet::ooxml
