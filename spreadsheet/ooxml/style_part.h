#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/opc/package.h"
#include "spreadsheet/opc/xml_part.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::ooxml {

// An item of a list.
struct StyleItem {
  std::string xml;
  pugi::xml_node node;          // null if it was added
  bool is_alternative = false;  // one of several, of which each program takes what it knows
};

// Items of one kind that the workbook numbers from 0. Items are told apart by how they're written.
class StyleList {
 public:
  // Of the elements `item` in the element `list`, which may be missing. Raises WorkbookError if they can't be numbered
  // for sure.
  StyleList(XmlPart& part, std::string_view list, std::string_view item);

  const std::vector<StyleItem>& items() const { return items_; }
  // The number of an item, added if it isn't there.
  std::uint32_t number(const std::string& xml);
  // Adds `xml` if there's no item at all.
  void complete(const std::string& xml);
  // Has the part hold what was added.
  void write();

 private:
  XmlPart& part_;
  std::string name_;
  pugi::xml_node list_;
  std::vector<StyleItem> items_;
  std::size_t written_;
};

// The part that tells how cells are shown.
class StylePart {
 public:
  // Raises WorkbookError if it can't be used.
  StylePart(std::string name, std::string text);

  // The numbers that the workbook has for `styles`; what's missing is added.
  std::vector<std::uint32_t> formats_of(const std::vector<CellStyle>& styles);
  PartChange change();

 private:
  void read_number_formats();
  bool stands_for(std::uint32_t number, const std::string& format) const;
  std::uint32_t free_number_format() const;
  std::uint32_t number_format(const std::string& format);
  std::uint32_t font(const CellStyle& style);
  std::uint32_t format_of(const CellStyle& style);

  XmlPart part_;
  std::string prefix_;
  StyleList number_formats_, fonts_, fills_, borders_, named_formats_, cell_formats_;
  pugi::xml_node basis_;                                         // the format of a cell without one; may be null
  std::map<std::uint32_t, std::optional<std::string>> formats_;  // by their numbers; nothing for one of several formats
  std::set<std::uint32_t> format_numbers_;                       // of formats, and those that cell formats name
};

// A part without any style, in the namespace `space`.
std::string no_styles(std::string_view space);

}  // namespace trvtrout::spreadsheet::ooxml
