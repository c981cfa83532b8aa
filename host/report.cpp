#include <algorithm>

#include "host/commands.h"
#include "platform/files/path.h"

namespace trvtrout::host {
namespace {

using Operation = Boolean (TarvelVtrOut_InOut::*)(std::u16string&, std::u16string&, Boolean&);

struct Part {
  const char* name;
  Operation report;
};

constexpr Part kParts[] = {
    {"product", &TarvelVtrOut_InOut::ASCII_Output_Product}, {"table", &TarvelVtrOut_InOut::ASCII_Output_Table},
    {"field", &TarvelVtrOut_InOut::ASCII_Output_Field},     {"tree", &TarvelVtrOut_InOut::ASCII_Output_Tree},
    {"lookup", &TarvelVtrOut_InOut::ASCII_Output_Lookup},   {"ctrltag", &TarvelVtrOut_InOut::ASCII_Output_CtrlTag},
    {"lang", &TarvelVtrOut_InOut::ASCII_Output_Lang},       {"dsend", &TarvelVtrOut_InOut::ASCII_Output_DSend},
};

// Whether a report beside the file can have a name: it is made of what stands in front of the first full stop.
bool can_be_named(const std::string& file) { return file.find('.', file.find_last_of('/') + 1) != std::string::npos; }

}  // namespace

std::vector<std::string> part_names() {
  std::vector<std::string> names;
  std::ranges::transform(kParts, std::back_inserter(names), &Part::name);
  return names;
}

ExitStatus report(const Settings& settings, const std::string& file, const std::vector<std::string>& parts,
                  bool temporary) {
  if (!can_be_named(file)) {
    complain(file + ": the file's name has no full stop, so its reports can't be named; give it an extension");
    return kTrouble;
  }
  Machine machine(settings);
  TarvelVtrOut_InOut utility(machine.services());
  std::u16string structure_list;
  ExitStatus status = read(machine, utility, file, structure_list);
  if (status == kTrouble) return status;
  if (status == kRemarkable) {
    complain(file + ": " + damage_text(*utility.LastDamage()) + "; the reports hold what could be read before it");
  }

  Progress progress;
  std::u16string path = platform::class_path(file);
  Boolean is_temp = temporary ? True : False;
  for (const Part& part : kParts) {
    if (!parts.empty() && std::ranges::find(parts, part.name) == parts.end()) continue;
    progress.show(std::string("Writing the report on ") + part.name);
    std::u16string report_path;
    const bool written = bool((utility.*part.report)(path, report_path, is_temp));
    progress.show({});
    if (written) {
      std::cout << platform::machine_path(report_path) << std::endl;
    } else {
      const std::string where = platform::machine_path(report_path);
      complain(std::string("no whole report on ") + part.name + (where.empty() ? "" : " in " + where) + ": " +
               utility.LastFailure());
      status = kTrouble;
    }
  }
  return status;
}

}  // namespace trvtrout::host
