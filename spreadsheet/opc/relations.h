#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "spreadsheet/opc/package.h"
#include "spreadsheet/opc/xml_part.h"

namespace trvtrout::spreadsheet::ooxml {

// The namespaces that a workbook is written in.
struct Dialect {
  std::string_view main, relations;
};
inline constexpr std::array<Dialect, 2> kDialects = {{
    {"http://schemas.openxmlformats.org/spreadsheetml/2006/main",
     "http://schemas.openxmlformats.org/officeDocument/2006/relationships"},
    {"http://purl.oclc.org/ooxml/spreadsheetml/main", "http://purl.oclc.org/ooxml/officeDocument/relationships"},
}};

// What the ids of references begin with, followed by a number.
inline constexpr std::string_view kRelationId = "rId";

// How one part refers to another.
struct Relation {
  std::string id;
  std::string kind;    // "worksheet", "styles"; the whole type if it's none of a workbook's own
  std::string target;  // a part's name; empty if it's outside of the package
};

// The references from one part to others, and the part that holds them.
class Relations {
 public:
  // Of the package itself for an empty `source`. A part without references has none. Raises WorkbookError.
  Relations(const Package& package, std::string source);

  const std::vector<Relation>& all() const { return relations_; }
  // The first of a kind; null if there's none.
  const Relation* first(std::string_view kind) const;
  // The part that is referred to by `id`; empty if there's none or it's outside.
  std::string target(const std::string& id) const;
  // Keeps ids from being given to further references.
  void keep_free(std::unordered_set<std::string> ids) { kept_free_ = std::move(ids); }
  // Adds a reference to a part and tells its id.
  std::string add(const Dialect& dialect, std::string_view kind, const std::string& target);
  PartChange change() const;

 private:
  std::string source_;
  std::unique_ptr<XmlPart> part_;
  std::vector<Relation> relations_;
  std::unordered_map<std::string, std::string> targets_;  // by id
  std::unordered_set<std::string> kept_free_;
};

// Which part holds what.
class ContentTypes {
 public:
  explicit ContentTypes(const Package& package);

  // In lower case; empty if it isn't told.
  std::string of(const std::string& part) const;
  bool names(const std::string& part) const { return types_.contains(key(part)); }
  void add(const std::string& part, std::string_view type);
  PartChange change() const;

 private:
  static std::string key(std::string_view part);

  XmlPart part_;
  std::unordered_map<std::string, std::string> types_;       // by part
  std::unordered_map<std::string, std::string> extensions_;  // by extension
};

// The folder of a part with a slash at its end; empty for the topmost.
std::string folder_of(std::string_view part);

}  // namespace trvtrout::spreadsheet::ooxml
