#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "spreadsheet/opc/package.h"
#include "spreadsheet/opc/xml_part.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::ooxml {

// Items of one kind that the workbook numbers from 0. Items are told apart by how they're written.
class StyleList {
 public:
  // Of the elements `item` in the element `list`, which may be missing.
  StyleList(XmlPart& part, std::string_view list, std::string_view item);

  const std::vector<std::string>& items() const { return items_; }
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
  std::vector<std::string> items_;
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
  std::uint32_t number_format(const std::string& format);
  std::uint32_t font(const CellStyle& style);
  std::uint32_t format_of(const CellStyle& style);

  XmlPart part_;
  std::string prefix_;
  pugi::xml_node basis_;  // the format of a cell without one; may be null
  StyleList number_formats_, fonts_, fills_, borders_, named_formats_, cell_formats_;
  std::unordered_map<std::string, std::uint32_t> format_numbers_;  // by the format
  std::uint32_t free_number_format_ = 164;                         // those below are reserved
};

// A part without any style, in the namespace `space`.
std::string no_styles(std::string_view space);

}  // namespace trvtrout::spreadsheet::ooxml
