#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "spreadsheet/opc/relations.h"
#include "spreadsheet/opc/xml_part.h"
#include "spreadsheet/sheet.h"

namespace trvtrout::spreadsheet::ooxml {

// The part that lists the sheets.
class WorkbookPart {
 public:
  // Raises WorkbookError if it's no workbook, or one whose structure is locked.
  WorkbookPart(std::string name, std::string text);

  const std::string& name() const { return part_.name(); }
  const Dialect& dialect() const { return *dialect_; }
  std::vector<std::string> sheet_names() const;
  // The ids of the references to the sheets.
  std::vector<std::string> sheet_relations() const;
  // The ids of references that anything in it names, whether they are there or not.
  std::unordered_set<std::string> named_relations() const;
  bool counts_from_1904() const;
  // Windows that show the workbook.
  std::size_t views() const;
  // The id of the reference to one sheet; empty if it has none.
  std::string sheet_relation(std::size_t position) const;
  // Has the sheet at `position` the hidden name of the filter that `sheet` has, or none, and formulas worked out anew.
  void exchange_content(const Sheet& sheet, std::size_t position);
  // Puts `sheet`, whose part is referred to by `relation`, in front of the active sheet and makes it the active one.
  void add_sheet(const Sheet& sheet, const std::string& relation);
  PartChange change() const;

 private:
  std::size_t active() const;
  std::string sheet_element(const Sheet& sheet, const std::string& relation) const;
  void show(std::size_t position);
  void shift_names(std::size_t position);
  std::string filter_name(const std::string& sheet_name, std::size_t rows, std::size_t position) const;
  void add_name(const std::string& name);
  // `behind`: the names of what follows the element in the format's order.
  void add_to_root(const std::string& element, std::span<const std::string_view> behind);
  void recalculate();

  XmlPart part_;
  const Dialect* dialect_ = nullptr;
  pugi::xml_node list_;
  std::vector<pugi::xml_node> sheets_;
};

}  // namespace trvtrout::spreadsheet::ooxml
