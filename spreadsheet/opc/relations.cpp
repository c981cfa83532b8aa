#include "spreadsheet/opc/relations.h"

#include <algorithm>
#include <utility>

#include "spreadsheet/opc/xml_text.h"

namespace trvtrout::spreadsheet::ooxml {
namespace {

constexpr const char* kContentTypes = "[Content_Types].xml";
constexpr std::string_view kNoRelations =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"></Relationships>";

std::string relations_part(const std::string& source) {
  const std::string folder = folder_of(source);
  return folder + "_rels/" + source.substr(folder.size()) + ".rels";
}

std::string kind_of(std::string_view type) {
  for (const Dialect& dialect : kDialects) {
    if (type.starts_with(dialect.relations) && type.substr(dialect.relations.size()).starts_with('/'))
      return std::string(type.substr(dialect.relations.size() + 1));
  }
  return std::string(type);
}

// The name of the part that `target` leads to from `source`.
std::string resolved(const std::string& source, std::string_view target) {
  std::string path = target.starts_with('/') ? std::string() : folder_of(source);
  while (!target.empty()) {
    const std::size_t end = std::min(target.find('/'), target.size());
    const std::string_view step = target.substr(0, end);
    if (step == "..") {
      if (!path.empty()) path.pop_back();
      path.resize(path.rfind('/') + 1);
    } else if (!step.empty() && step != ".") {
      path.append(step).append("/");
    }
    target.remove_prefix(std::min(end + 1, target.size()));
  }
  if (!path.empty()) path.pop_back();
  return path;
}

}  // namespace

std::string folder_of(std::string_view part) { return std::string(part.substr(0, part.rfind('/') + 1)); }

Relations::Relations(const Package& package, std::string source) : source_(std::move(source)) {
  const std::string name = relations_part(source_);
  part_ = std::make_unique<XmlPart>(name, package.has(name) ? package.read(name) : std::string(kNoRelations));
  for (const auto node : part_->children(part_->root(), "Relationship")) {
    const bool outside = node.attribute("TargetMode").value() == std::string_view("External");
    Relation& relation = relations_.emplace_back();
    relation.id = node.attribute("Id").value();
    relation.kind = kind_of(node.attribute("Type").value());
    if (!outside) relation.target = resolved(source_, node.attribute("Target").value());
    targets_.emplace(relation.id, relation.target);
  }
}

const Relation* Relations::first(std::string_view kind) const {
  const auto found = std::ranges::find(relations_, kind, &Relation::kind);
  return found == relations_.end() ? nullptr : &*found;
}

std::string Relations::target(const std::string& id) const {
  const auto found = targets_.find(id);
  return found == targets_.end() ? std::string() : found->second;
}

std::string Relations::add(const Dialect& dialect, std::string_view kind, const std::string& target) {
  std::size_t number = targets_.size();
  std::string id;
  do id = std::string(kRelationId) + std::to_string(++number);
  while (targets_.contains(id) || kept_free_.contains(id));
  const std::string folder = folder_of(source_);
  const std::string shown = target.starts_with(folder) ? target.substr(folder.size()) : '/' + target;
  part_->append(part_->root(), '<' + part_->prefix() + "Relationship Id=\"" + id + "\" Type=\"" +
                                   std::string(dialect.relations) + '/' + std::string(kind) +
                                   "\" Target=" + xml_attribute(shown) + "/>");
  targets_.emplace(id, target);
  return id;
}

PartChange Relations::change() const { return {part_->name(), text_stream(part_->changed_text())}; }

ContentTypes::ContentTypes(const Package& package) : part_(kContentTypes, package.read(kContentTypes)) {
  for (const auto node : part_.children(part_.root(), "Override"))
    types_.emplace(key(node.attribute("PartName").value()), lower(node.attribute("ContentType").value()));
  for (const auto node : part_.children(part_.root(), "Default"))
    extensions_.emplace(lower(node.attribute("Extension").value()), lower(node.attribute("ContentType").value()));
}

std::string ContentTypes::key(std::string_view part) { return lower(part.substr(part.starts_with('/') ? 1 : 0)); }

std::string ContentTypes::of(const std::string& part) const {
  if (const auto found = types_.find(key(part)); found != types_.end()) return found->second;
  const auto found = extensions_.find(lower(part.substr(part.rfind('.') + 1)));
  return found == extensions_.end() ? std::string() : found->second;
}

void ContentTypes::add(const std::string& part, std::string_view type) {
  part_.append(part_.root(), '<' + part_.prefix() + "Override PartName=" + xml_attribute('/' + part) +
                                 " ContentType=\"" + std::string(type) + "\"/>");
  types_.emplace(key(part), type);
}

PartChange ContentTypes::change() const { return {part_.name(), text_stream(part_.changed_text())}; }

}  // namespace trvtrout::spreadsheet::ooxml
