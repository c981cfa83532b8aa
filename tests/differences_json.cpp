#include "tests/differences_json.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <utility>

#include "exchange/differences_json.h"
#include "exchange/json_document.h"
#include "host/exchanged_texts.h"

namespace trvtrout::tests {
namespace {

// "Items[3]" is the name and the number; a name alone has number 0.
struct Step {
  std::string name;
  std::size_t number = 0;
};

std::vector<Step> steps_of(const std::string& path) {
  std::vector<Step> steps;
  std::istringstream stream(path);
  for (std::string part; std::getline(stream, part, '/');) {
    const std::size_t open = part.find('[');
    steps.push_back({part.substr(0, open), open == std::string::npos ? 0 : std::stoul(part.substr(open + 1))});
  }
  return steps;
}

Json& at(Json& document, const std::vector<Step>& steps) {
  Json* value = &document["sections"];
  for (const Step& step : steps) {
    value = &value->at(step.name);
    if (step.number > 0) value = &elements_of(*value).at(step.number - 1);
  }
  return *value;
}

// An item in its list, at the end of a path.
struct Item {
  std::vector<Step> list;
  std::size_t number;
  const Json* change;
};

std::vector<Item> items_of(const Json& differences, const char* path, std::initializer_list<const char*> kinds) {
  std::vector<Item> items;
  for (const Json& change : differences["changes"]) {
    if (std::ranges::find(kinds, change["kind"]) == kinds.end()) continue;
    auto steps = steps_of(change[path]);
    const std::size_t number = std::exchange(steps.back().number, 0);
    items.push_back({std::move(steps), number, &change});
  }
  return items;
}

}  // namespace

Json& elements_of(Json& list) { return list.is_object() ? list["items"] : list; }

Json json_of(const vtrfile::DocumentSlots& document) {
  std::ostringstream out;
  exchange::JsonWriter json(out);
  exchange::Texts texts = host::texts_of(1252);
  write_document(json, texts, document);
  json.flush();
  return Json::parse(out.str());
}

Json differences_between(const vtrfile::DocumentSlots& old_document, const vtrfile::DocumentSlots& new_document) {
  std::ostringstream out;
  exchange::Texts texts = host::texts_of(1252);
  exchange::DifferencesHead head{"old.vtr", "new.vtr", {}};
  const auto of_document = [&](const differences::Tell& tell) { find_differences(old_document, new_document, tell); };
  of_document([&](const differences::Difference& difference) { head.counts.add(difference); });
  exchange::JsonWriter json(out);
  exchange::write_differences(
      json, texts, head, [&](const auto& tell) { find_header_differences(old_document, new_document, tell); },
      of_document);
  return Json::parse(out.str());
}

Json applied(Json document, const Json& differences) {
  auto out = items_of(differences, "path", {"removed", "moved"});
  std::ranges::stable_sort(out, std::greater(),
                           [](const Item& item) { return std::pair(item.list.size(), item.number); });
  std::map<const Json*, Json> moved;
  for (const Item& item : out) {
    Json& items = elements_of(at(document, item.list));
    moved[item.change] = items.at(item.number - 1);
    items.erase(item.number - 1);
  }
  auto in = items_of(differences, "newPath", {"added", "moved"});
  std::ranges::stable_sort(in, {}, [](const Item& item) { return std::pair(item.list.size(), item.number); });
  for (const Item& item : in) {
    Json& items = elements_of(at(document, item.list));
    const bool is_added = (*item.change)["kind"] == "added";
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(item.number - 1),
                 is_added ? (*item.change)["new"] : moved.at(item.change));
  }
  for (const Json& change : differences["changes"]) {
    if (change["kind"] == "changed") at(document, steps_of(change["newPath"])) = change["new"];
  }
  return document;
}

}  // namespace trvtrout::tests
