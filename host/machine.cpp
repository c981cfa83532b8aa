#include "host/machine.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

#include "component/document_kind.h"
#include "host/workbook_target.h"
#include "platform/console/printable.h"
#include "platform/files/path.h"
#include "services/guard.h"
#include "text/utf8.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

bool person_is_there() { return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0; }

// Puts the cursor on an empty line of the terminal.
constexpr const char* kEraseLine = "\r\033[K";

bool can_erase() {
  const char* const terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

const char* line_start() { return !CaughtOutput::is_catching() && can_erase() ? kEraseLine : ""; }

}  // namespace

Machine::Machine(const Settings& settings, Output output)
    : output_(output == Output::kFiles  ? static_cast<Files&>(report_files_)
              : output == Output::kNone ? static_cast<Files&>(no_files_)
                                        : held_files_),
      message_box_(settings.overwrite, std::cin, err(), person_is_there(), line_start()),
      save_dialog_(output_, std::cin, err(), person_is_there()),
      locale_(settings.code_page) {
  spreadsheet_.set_rules(workbook_rules(settings));
  message_box_.share(settings.terminal);
}

void complain(const std::string& line) {
  note_complaint(line);
  err() << line_start() << "vtrout: " << platform::printable_line(text::from_utf8(line)) << '\n';
}

Progress::Progress() : has_line_(!is_off_ && !CaughtOutput::is_catching() && can_erase()) {}

void Progress::show(const std::string& doing) {
  if (!has_line_ || (doing.empty() && !shown_)) return;
  std::cerr << kEraseLine << platform::printable_line(text::from_utf8(doing)) << std::flush;
  shown_ = !doing.empty();
}

ExitStatus read(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, std::u16string& structure_list,
                Boolean is_secondary) {
  machine.speak_of(file);
  std::u16string path = platform::class_path(file);
  structure_list.clear();
  // Of a file that can't be opened the class tells why.
  const bool is_document =
      guarded([&] { return begins_as_document(machine.services().files, path); }, [](const Failure&) { return true; });
  if (!is_document) {
    complain(file +
             ": not a VTR file, or one whose header is damaged: no format version stands where a VTR file has it");
    return kTrouble;
  }
  bool whole = false;
  {
    Progress progress;
    progress.show("Reading " + file);
    whole = bool(utility.ReadVTR(path, structure_list, is_secondary));
  }
  const auto& damage = utility.LastDamage();
  for (const vtrfile::Gap& gap : utility.LastRead().gaps) {
    if (!damage || damage->offset() != gap.begin) complain(file + ": " + gap_text(gap));
  }
  if (damage) return kRemarkable;
  if (whole) return utility.LastRead().gaps.empty() ? kFine : kRemarkable;
  // The class itself has told the user of an unsupported version.
  if (!structure_list.empty()) complain(file + ": " + utility.LastFailure());
  // All was read, and only then something failed.
  const auto& parts = utility.LastRead().parts;
  return !parts.empty() && parts.back().name == vtrfile::kEndTag ? kFine : kTrouble;
}

void complain_of_part(const char* what, const char* part, const std::u16string& path, const std::string& why) {
  const std::string where = platform::machine_path(path);
  complain(std::string("no complete ") + what + ' ' + part + (where.empty() ? "" : " in " + where) + ": " + why);
}

}  // namespace trvtrout::host
