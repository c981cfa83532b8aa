#include "host/terminal/labels.h"

#include <algorithm>
#include <vector>

#include "host/terminal/value_text.h"
#include "vtrfile/item_keys.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using differences::Place;

// The member of a list's record that is the list; its record's name says enough.
constexpr std::string_view kItems = "Items";

std::string key_or_place(Locale& locale, const Place& item) {
  const bool in_old = item.old_number > 0;
  const std::string key = vtrfile::key_text(in_old ? item.old_value : item.new_value);
  return key.empty() ? '#' + std::to_string(in_old ? item.old_number : item.new_number) : shown(locale, key);
}

// A text of the section of languages has a name beside its number.
std::string element_of_run(const std::string& section, std::string_view run, std::uint32_t number) {
  const std::string shown = '[' + std::to_string(number) + ']';
  const bool is_language = section == vtrfile::kSection<&vtrfile::DocumentSlots::Language>.tag && run == "Texts";
  return is_language ? shown + ' ' + vtrfile::kLanguageNames[number - 1] : shown;
}

void append(std::string& text, const char* between, const std::string& more) {
  if (!text.empty() && !more.empty()) text += between;
  text += more;
}

}  // namespace

Label label_of(Locale& locale, const Place& place) {
  const std::vector<const Place*> steps = differences::steps_to(place);
  Label label{.section = std::string(steps.front()->name)};
  for (std::size_t at = 1; at < steps.size(); ++at) {
    const Place& step = *steps[at];
    if (step.in_list) {
      label.list = label.item;
      append(label.list, " / ", label.member);
      label.item = label.list;
      append(label.item, " ", key_or_place(locale, step));
      label.member.clear();
    } else if (step.name.empty()) {
      label.member += element_of_run(label.section, steps[at - 1]->name, step.new_number);
    } else if (step.name != kItems || at + 1 == steps.size()) {
      append(label.member, "/", std::string(step.name));
    }
  }
  return label;
}

}  // namespace trvtrout::host
