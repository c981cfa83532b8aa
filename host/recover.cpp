#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>

#include "component/read_back.h"
#include "host/commands.h"
#include "host/json.h"
#include "host/new_file.h"
#include "host/read_saving.h"
#include "host/recovery_account.h"
#include "host/salvage_account.h"
#include "platform/console/printable.h"
#include "platform/files/path.h"
#include "platform/files/staged_files.h"
#include "services/guard.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

bool same_place(Files& files, const std::u16string& path, const std::u16string& other) {
  const auto real = [](const std::u16string& name) {
    std::error_code none;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(platform::machine_path(name), none), none);
  };
  return files.SameFile(path, other) || real(path) == real(other);
}

std::string number_of(const std::optional<std::int64_t>& number) { return number ? std::to_string(*number) : "?"; }

void print(const KeptList& list, int indent, int width, bool whole) {
  const bool passed = list.test == ListTest::kPassed;
  if (passed && list.announced == 0 && list.kept == 0 && list.surplus == 0 && list.empty == 0) return;
  const std::string margin(static_cast<std::size_t>(indent), ' ');
  err() << margin << std::left << std::setw(width) << list.title << list.kept << " of " << number_of(list.announced)
        << " records";
  if (list.empty > 0) err() << "; " << list.empty << " more slots are announced and are empty in the new file";
  if (list.test == ListTest::kKept) err() << "; fails its test, and is in the new file as it was read";
  err() << '\n';
  if (list.surplus == 0) return;
  err() << margin << std::setw(width) << "" << list.surplus << " more were read beyond those announced"
        << (whole ? "" : "; they may be what followed the list") << '\n';
}

// What the table has no place for.
void print_remarks(const RecoveryAccount& account) {
  std::string other_texts;
  for (const KeptPart& part : account.parts) {
    if (!part.tag_texts_kept) (other_texts += other_texts.empty() ? "" : ", ") += part.name;
  }
  if (!other_texts.empty()) {
    err() << "the texts of these tags are lost, because all tags of the new file get those of the last one: "
          << other_texts << '\n';
  }
  err() << "kept " << (account.kept_at_most ? "at most " : "") << account.kept << " of " << account.bytes << " bytes ("
        << percent(account.kept, account.bytes) << ")\n";
  if (account.behind_end > 0) {
    err() << account.behind_end << " bytes after the end tag are not part of the document\n";
  }
}

void print(const RecoveryAccount& account) {
  constexpr int kNameWidth = 26, kFateWidth = 30, kNumberWidth = 12, kIndent = 2;
  const auto row = [](const std::string& name, const std::string& fate) -> std::ostream& {
    return err() << std::left << std::setw(kNameWidth) << name << std::setw(kFateWidth) << fate << std::right
                 << std::setw(kNumberWidth);
  };
  row("part", "outcome") << "bytes read" << std::setw(kNumberWidth) << "kept" << '\n';
  for (const KeptPart& part : account.parts) {
    row(std::string(part.name), text_of(part.fate).title) << part.read << std::setw(kNumberWidth) << part.kept << '\n';
    for (const KeptList& list : part.lists) print(list, kIndent, kNameWidth - kIndent, part.fate == Fate::kWhole);
  }
  print_remarks(account);
}

constexpr const char* kTests[] = {"passed", "emptied", "kept"};

Json to_json(const KeptPart& part) {
  Json lists = Json::object();
  for (const KeptList& list : part.lists) {
    lists[list.key] = {{"announced", list.announced ? Json(*list.announced) : Json()},
                       {"kept", list.kept},
                       {"surplus", list.surplus},
                       {"empty", list.empty},
                       {"test", kTests[static_cast<std::size_t>(list.test)]}};
  }
  return {{"outcome", text_of(part.fate).key},
          {"bytesRead", part.read},
          {"bytesKept", part.kept},
          {"tagTextsKept", part.tag_texts_kept},
          {"lists", lists}};
}

// What was written, and what kept the log alone from its place.
struct Written {
  std::string output, log_failure;
  std::u16string message;
  std::vector<std::string> unexplained;  // the files that hold what nothing can be told of
};

void print_json(const RecoveryTask& task, const Written& written, const RecoveryAccount& account,
                const TarvelVtrOut_InOut& utility, Locale& locale) {
  Json parts = Json::object();
  for (const KeptPart& part : account.parts) parts[std::string(part.name)] = to_json(part);
  const auto& damage = utility.LastDamage();
  const auto& salvaged = utility.LastSalvage();
  show_json("recover", {{"file", task.file},
                        {"output", written.output},
                        {"log", task.log.empty() || !written.log_failure.empty() ? Json() : Json(task.log)},
                        {"nothingLost", account.nothing_lost},
                        {"damage", damage ? damage_json(*damage) : Json()},
                        {"gaps", gaps_json(utility.LastRead().gaps)},
                        {"bytes", account.bytes},
                        {"bytesKept", account.kept},
                        {"keptAtMost", account.kept_at_most},
                        {"bytesBehindEnd", account.behind_end},
                        {"parts", parts},
                        {"salvage", salvaged ? salvage_json(*salvaged, locale) : Json()},
                        {"unexplainedFiles", written.unexplained},
                        {"message", text::to_utf8(written.message)}});
}

// Reads the file; false when there is nothing in it to recover, of which the user has been told.
bool read_damaged(Machine& machine, TarvelVtrOut_InOut& utility, const RecoveryTask& task, std::u16string& message) {
  const std::string& file = task.file;
  if (read_saving(machine, utility, file, !task.first_damage, message) == kTrouble) {
    // Of a file that can't be read at all the list has been made, and the user told why.
    if (message.empty() && !utility.LastSalvage() && !utility.LastRead().parts.empty())
      complain(file + ": its version can't be read; the file may be damaged" + kNothingWritten);
    return false;
  }
  if (utility.LastSalvage() || utility.LastRead().parts.front().whole) return true;
  complain(file + ": " + damage_text(*utility.LastDamage()) + "; without a header nothing can be recovered" +
           kNothingWritten);
  return false;
}

struct Targets {
  Target output;
  std::optional<Target> log;  // none when none is asked for
};

// Whether the path is that of another file that is still to be recovered, of which the user is told then.
bool is_input(const HostServices& services, const RecoveryTask& task, const std::u16string& path) {
  const auto is_there = [&](const Input& input) {
    return platform::has_class_path(input.path) && services.files.SameFile(path, platform::class_path(input.path));
  };
  if (!task.inputs || std::ranges::none_of(*task.inputs, is_there)) return false;
  complain(platform::machine_path(path) + ": that's one of the files to recover, which are never overwritten; give " +
           task.file + " another place with --output-dir" + kNothingWritten);
  return true;
}

// Nothing when one of them can't be written, of which the user has been told.
std::optional<Targets> targets_of(const HostServices& services, const RecoveryTask& task) {
  constexpr const char* kSourceIs = "the damaged file";
  const auto output = target_for(
      services, {task.file, kSourceIs, task.output, u"Recovered", "; give one with --output", task.output_dir});
  if (!output || (output->replaces && is_input(services, task, output->path))) return {};
  if (task.log.empty()) return Targets{*output, {}};
  const auto log = target_for(services, {task.file, kSourceIs, task.log, u"Log"});
  if (!log) return {};
  if (!same_place(services.files, log->path, output->path)) return Targets{*output, log};
  complain(task.log + ": the log can't be the recovered file itself; name another file" + kNothingWritten);
  return {};
}

// The recovered file and its log, which stand beside their places until both are complete.
class NewFiles {
 public:
  // `files` must outlive it.
  NewFiles(Files& files, const std::string& model) : output_(files, model), log_(files, model) {}

  Files& output() { return output_; }
  std::u16string content_path() const { return output_.content_path(); }
  // Raises ServiceError when the new file isn't in its place. What kept the log alone from its place, if anything.
  std::string commit(const Targets& targets, const std::string& log_text) {
    if (targets.log) {
      const auto log = log_.OpenBinaryOutput(targets.log->path);
      log->Write(log_text);
      log->Close();
    }
    output_.commit(targets.output.replaces);
    try {
      if (targets.log) log_.commit(targets.log->replaces);
    } catch (const ServiceError& error) {
      return error.what();
    }
    return {};
  }

 private:
  platform::StagedFiles output_, log_;
};

void tell(const RecoveryTask& task, const Written& written, const RecoveryAccount& account,
          const TarvelVtrOut_InOut& utility, Locale& locale, bool quiet) {
  if (utility.LastDamage()) complain(task.file + ": " + damage_text(*utility.LastDamage()));
  if (!written.log_failure.empty()) complain(written.output + " was written; the log wasn't: " + written.log_failure);
  if (task.json) {
    print_json(task, written, account, utility, locale);
  } else {
    if (!quiet && CaughtOutput::is_catching()) err() << platform::printable_line(text::from_utf8(task.file)) << '\n';
    if (!quiet) print(account);
    if (!quiet && utility.LastSalvage()) print_salvage(err(), *utility.LastSalvage(), locale);
    out() << written.output << std::endl;
  }
}

// Their paths; those that couldn't be written aren't among them, and the user has been told.
std::vector<std::string> unexplained_files(const RecoveryTask& task, const vtrfile::Salvaged& salvaged) {
  return guarded([&] { return write_unexplained(task.file, task.unexplained, salvaged); },
                 [](const Failure& failure) {
                   complain(failure.what + "; the unexplained bytes weren't all written, the new file was");
                   return std::vector<std::string>();
                 });
}

}  // namespace

ExitStatus recover(const Settings& settings, const RecoveryTask& task) {
  Machine machine(settings);
  NewFiles files(machine.services().files, task.file);
  TarvelVtrOut_InOut utility(machine.services(files.output()));
  std::u16string message;
  if (!read_damaged(machine, utility, task, message)) return kTrouble;
  auto targets = targets_of(machine.services(), task);
  if (!targets) return kTrouble;

  const std::string output = platform::machine_path(targets->output.path);
  const auto trouble = [&](const std::string& what) {
    complain(output + ": " + what + kNothingWritten);
    return kTrouble;
  };
  Progress progress;
  progress.show("Writing " + output);
  const vtrfile::DocumentSlots before = utility.CurrentSlots();
  if (!utility.RecoverVTR(targets->output.path, message)) return trouble(utility.LastFailure());
  progress.show("Checking " + output);
  std::optional<std::vector<std::uint64_t>> sizes;
  std::string log_failure;
  try {
    sizes = read_back(machine.services(), files.content_path(), utility.CurrentSlots());
    if (!sizes) return trouble("what was written doesn't read back as the same document");
    log_failure = files.commit(*targets, machine.locale().Encode(message));
  } catch (const ServiceError& error) {
    return trouble(error.what());
  }
  progress.show({});

  RecoveryAccount account = account_for_recovery(before, utility.CurrentSlots(), utility.LastRead(), *sizes);
  Written written{output, log_failure, message, {}};
  if (const auto& salvaged = utility.LastSalvage()) {
    account.nothing_lost = false;
    enter_losses(account, *salvaged);
    if (!task.unexplained.empty()) written.unexplained = unexplained_files(task, *salvaged);
  }
  tell(task, written, account, utility, machine.locale(), settings.quiet);
  return account.nothing_lost && log_failure.empty() ? kFine : kRemarkable;
}

}  // namespace trvtrout::host
