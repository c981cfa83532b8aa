#include "host/machine.h"

#include <filesystem>
#include <unistd.h>

#include "platform/files/path.h"

namespace trvtrout::host {
namespace {

bool person_is_there() { return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0; }

// Why `file` can't be read as a document at all; empty when it may be tried.
std::string obstacle(const std::string& file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) return "there is no such file; check the path";
  if (error) return error.message();
  if (std::filesystem::is_directory(status)) return "this is a folder; name a VTR file in it";
  return {};
}

}  // namespace

Machine::Machine(const Settings& settings)
    : message_box_(settings.overwrite, std::cin, std::cerr, person_is_there()),
      save_dialog_(files_, std::cin, std::cerr, person_is_there()),
      locale_(settings.code_page) {}

void complain(const std::string& line) { std::cerr << "vtrout: " << line << '\n'; }

Progress::Progress() : on_terminal_(isatty(STDERR_FILENO) != 0) {}

void Progress::show(const std::string& doing) {
  constexpr const char* kEraseLine = "\r\033[K";
  if (!on_terminal_ || (doing.empty() && !shown_)) return;
  std::cerr << kEraseLine << doing << std::flush;
  shown_ = !doing.empty();
}

ExitStatus read(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file,
                std::u16string& structure_list) {
  machine.speak_of(file);
  if (const std::string why = obstacle(file); !why.empty()) {
    complain(file + ": " + why);
    return kTrouble;
  }
  std::u16string path = platform::class_path(file);
  Boolean is_secondary = False;
  structure_list.clear();
  {
    Progress progress;
    progress.show("Reading " + file);
    if (utility.ReadVTR(path, structure_list, is_secondary)) return kFine;
  }
  if (utility.LastDamage()) return kRemarkable;
  // Of an unsupported version the class has told the user itself.
  if (!structure_list.empty()) complain(utility.LastFailure());
  return kTrouble;
}

std::string damage_text(const vtrfile::ReadError& damage) {
  return "damaged at byte " + std::to_string(damage.offset()) + ", " + damage.path() + ": " + damage.found();
}

}  // namespace trvtrout::host
