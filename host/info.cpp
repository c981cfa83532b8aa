#include <iomanip>

#include "host/commands.h"
#include "host/document_account.h"
#include "host/json.h"
#include "platform/console/printable.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

using platform::printable;

constexpr int kTitleWidth = 25;

void print_line(const std::string& title, const std::string& value) {
  std::cout << std::left << std::setw(kTitleWidth) << title << value << '\n';
}

void print(const DocumentAccount& account, const std::string& file) {
  print_line("File", file);
  for (const auto* values : {&account.header, &account.product}) {
    for (const AccountText& value : *values) print_line(value.title, platform::printable_line(value.text));
  }
  std::cout << '\n' << std::left << std::setw(kTitleWidth) << "List" << std::right;
  for (const char* head : {"Count", "Current", "Max", "Recounted"}) std::cout << std::setw(10) << head;
  std::cout << "  Result\n";
  for (const AccountList& list : account.lists) {
    std::cout << std::left << std::setw(kTitleWidth) << list.title << std::right;
    for (const auto& number : {list.count, list.current, list.max}) {
      std::cout << std::setw(10) << (number ? std::to_string(*number) : "-");
    }
    std::cout << std::setw(10) << list.size << "  " << printable(list.result) << '\n';
  }
}

Json to_json(const std::vector<AccountText>& values) {
  Json object = Json::object();
  for (const AccountText& value : values) object[value.key] = text::to_utf8(value.text);
  return object;
}

Json to_json(const AccountList& list) {
  const auto number = [](const std::optional<std::int32_t>& value) { return value ? Json(*value) : Json(); };
  return {{"count", number(list.count)},
          {"current", number(list.current)},
          {"max", number(list.max)},
          {"recounted", list.size},
          {"result", text::to_utf8(list.result)}};
}

void print_json(const DocumentAccount& account, const std::string& file, const std::u16string& structure_list,
                const TarvelVtrOut_InOut& utility) {
  const auto& damage = utility.LastDamage();
  Json lists = Json::object();
  for (const AccountList& list : account.lists) lists[list.key] = to_json(list);
  const Json whole = {{"file", file},
                      {"result", !damage},
                      {"structureList", damage ? Json(text::to_utf8(structure_list)) : Json()},
                      {"damage", damage ? damage_json(*damage) : Json()},
                      {"gaps", gaps_json(utility.LastRead().gaps)},
                      {"header", to_json(account.header)},
                      {"product", to_json(account.product)},
                      {"lists", lists}};
  show_json(whole);
}

}  // namespace

ExitStatus info(const Settings& settings, const InfoTask& task) {
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  const ExitStatus status = read(machine, utility, task.file, structure_list);
  if (status == kTrouble) return status;

  const DocumentAccount account = account_for(utility, machine.locale());
  if (task.json) {
    print_json(account, task.file, structure_list, utility);
  } else {
    print(account, task.file);
    if (utility.LastDamage()) std::cout << '\n' << printable(structure_list) << '\n';
  }
  if (utility.LastDamage()) {
    std::cout.flush();
    complain(task.file + ": " + damage_text(*utility.LastDamage()));
  }
  return status;
}

}  // namespace trvtrout::host
