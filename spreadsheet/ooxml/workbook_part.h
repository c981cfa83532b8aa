#pragma once

#include <cstddef>
#include <string>
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
  // Puts `sheet`, whose part is referred to by `relation`, in front of the active sheet and makes it the active one.
  void add_sheet(const Sheet& sheet, const std::string& relation);
  PartChange change() const;

 private:
  std::size_t active() const;
  std::string sheet_element(const Sheet& sheet, const std::string& relation) const;
  void show(std::size_t position);
  void shift_names(std::size_t position);
  void add_filter_name(const Sheet& sheet, std::size_t position);

  XmlPart part_;
  const Dialect* dialect_ = nullptr;
  pugi::xml_node list_;
  std::vector<pugi::xml_node> sheets_;
};

}  // namespace trvtrout::spreadsheet::ooxml
