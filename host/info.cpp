#include <iomanip>

#include "host/commands.h"
#include "host/json.h"
#include "host/read_saving.h"
#include "host/salvage_account.h"
#include "platform/console/printable.h"
#include "text/utf8.h"
#include "vtrfile/lists.h"

namespace trvtrout::host {
namespace {

using platform::printable;
using vtrfile::DocumentList;
using vtrfile::DocumentSlots;
using vtrfile::ListInfo;

constexpr int kTitleWidth = 25;

void print_line(const std::string& title, const std::string& value) {
  out() << std::left << std::setw(kTitleWidth) << title << value << '\n';
}

// A text of the file, with its title for people and its key for programs.
struct NamedText {
  const char* title;
  const char* key;
  vtrfile::Text text;
};

std::vector<NamedText> header_texts(const vtrfile::HEADER_STRUCT& header) {
  return {{"Format version", "version", header.Version},
          {"Created", "created", header.Created},
          {"Last modified", "modified", header.Modified},
          {"Written as", "fileName", header.FileName}};
}

std::vector<NamedText> product_texts(const vtrfile::PRODUCT_STRUCT& product) {
  return {{"Product", "code", product.Code},
          {"Description", "description", product.Description},
          {"Serial index", "serialIndex", product.SerialIndex},
          {"Product version", "version", product.Version},
          {"Database", "database", product.Database}};
}

std::u16string result_of(const DocumentList& list, const ListInfo& info) {
  return info.ok ? u"OK" : std::u16string(list.error);
}

void print(const DocumentSlots& document, Locale& locale, const std::string& file) {
  print_line("File", file);
  for (const auto& texts : {header_texts(*document.Header), product_texts(document.Schema->Product)}) {
    for (const NamedText& text : texts) {
      print_line(text.title, platform::printable_line(locale.Decode(text.text.bytes())));
    }
  }
  out() << '\n' << std::left << std::setw(kTitleWidth) << "List" << std::right;
  for (const char* head : {"Count", "Current", "Max", "Recounted"}) out() << std::setw(10) << head;
  out() << "  Result\n";
  for (const DocumentList& list : vtrfile::document_lists()) {
    const ListInfo info = list.recount(document);
    out() << std::left << std::setw(kTitleWidth) << list.title << std::right;
    for (const auto& number : {info.count, info.current, info.max}) {
      out() << std::setw(10) << (number ? std::to_string(*number) : "-");
    }
    out() << std::setw(10) << info.size << "  " << printable(result_of(list, info)) << '\n';
  }
}

Json to_json(const std::vector<NamedText>& texts, Locale& locale) {
  Json object = Json::object();
  for (const NamedText& text : texts) object[text.key] = text::to_utf8(locale.Decode(text.text.bytes()));
  return object;
}

Json to_json(const DocumentList& list, const ListInfo& info) {
  const auto number = [](const std::optional<std::int32_t>& value) { return value ? Json(*value) : Json(); };
  return {{"count", number(info.count)},
          {"current", number(info.current)},
          {"max", number(info.max)},
          {"recounted", info.size},
          {"result", text::to_utf8(result_of(list, info))}};
}

// The titles of the lists that don't hold together, joined by commas.
std::string broken_lists(const DocumentSlots& document) {
  std::string titles;
  for (const DocumentList& list : vtrfile::document_lists()) {
    if (!list.recount(document).ok) (titles += titles.empty() ? "" : ", ") += list.title;
  }
  return titles;
}

void print_json(const TarvelVtrOut_InOut& utility, Locale& locale, const std::string& file,
                const std::u16string& structure_list) {
  const DocumentSlots& document = utility.CurrentSlots();
  const auto& damage = utility.LastDamage();
  Json lists = Json::object();
  for (const DocumentList& list : vtrfile::document_lists()) lists[list.key] = to_json(list, list.recount(document));
  Json whole = {{"file", file},
                {"result", !damage && !utility.LastSalvage()},
                {"structureList", damage ? Json(text::to_utf8(structure_list)) : Json()},
                {"damage", damage ? damage_json(*damage) : Json()},
                {"listsHoldTogether", broken_lists(document).empty()},
                {"gaps", gaps_json(utility.LastRead().gaps)},
                {"header", to_json(header_texts(*document.Header), locale)},
                {"product", to_json(product_texts(document.Schema->Product), locale)},
                {"lists", lists}};
  if (const auto& salvaged = utility.LastSalvage()) whole["salvage"] = salvage_json(*salvaged, locale);
  show_json("info", whole);
}

}  // namespace

ExitStatus info(const Settings& settings, const InfoTask& task) {
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  const ExitStatus status = read_saving(machine, utility, task.file, task.salvage, structure_list);
  if (status == kTrouble) return status;

  if (task.json) {
    print_json(utility, machine.locale(), task.file, structure_list);
  } else {
    if (task.follows_another) out() << '\n';
    print(utility.CurrentSlots(), machine.locale(), task.file);
    if (utility.LastDamage()) out() << '\n' << printable(structure_list) << '\n';
    if (utility.LastSalvage()) print_salvage(out() << '\n', *utility.LastSalvage(), machine.locale());
  }
  out().flush();
  if (utility.LastDamage()) complain(task.file + ": " + damage_text(*utility.LastDamage()));
  const std::string broken = broken_lists(utility.CurrentSlots());
  if (broken.empty()) return status;
  complain(task.file + ": these lists don't hold together: " + broken + "; see `vtrout recover`");
  return kRemarkable;
}

}  // namespace trvtrout::host
