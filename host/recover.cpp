#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>

#include "host/commands.h"
#include "host/json.h"
#include "host/recovery_account.h"
#include "platform/files/path.h"
#include "platform/files/staged_files.h"
#include "platform/text/utf8.h"
#include "reports/naming.h"
#include "vtrfile/record_writer.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

constexpr const char* kNothingWritten = "; nothing was written";

// The file to write, as the class knows it; empty when there is none, of which the user has been told.
std::u16string output_path(const HostServices& services, const std::string& file, const std::string& given,
                           const std::u16string& desc_name) {
  const std::u16string document = platform::class_path(file);
  const auto is_document = [&](const std::u16string& path) {
    if (!services.files.SameFile(path, document)) return false;
    complain(platform::machine_path(path) + ": that is the damaged file itself, which is never written over; name " +
             "another one" + kNothingWritten);
    return true;
  };
  if (!given.empty() && is_document(platform::class_path(given))) return {};
  const OutputName name = given.empty()
                              ? GetOutputFileName(services, document, desc_name)
                              : ConfirmOutputFileName(services, document, desc_name, platform::class_path(given));
  if (name.path.empty()) {
    complain(file + ": " +
             (name.failure.empty() ? "its name has no full stop, so none can be made of it" : name.failure) +
             (given.empty() ? "; give one with --output" : "") + kNothingWritten);
    return {};
  }
  if (name.abandoned) {
    complain(platform::machine_path(name.path) + ": the file that stands there was left as it was" + kNothingWritten);
    return {};
  }
  return is_document(name.path) ? std::u16string() : name.path;
}

bool same_place(Files& files, const std::u16string& path, const std::u16string& other) {
  const auto real = [](const std::u16string& name) {
    std::error_code none;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(platform::machine_path(name), none), none);
  };
  return files.SameFile(path, other) || real(path) == real(other);
}

// Reads the new file and holds it to the document that was written: the bytes of each section's record, or nothing when
// it isn't the same.
std::optional<std::vector<std::uint64_t>> read_back(const HostServices& services, std::u16string path,
                                                    const vtrfile::DocumentSlots& document) {
  TarvelVtrOut_InOut reader(services);
  std::u16string list;
  Boolean primary = False;
  if (!reader.ReadVTR(path, list, primary)) return {};
  std::vector<std::uint64_t> sizes;
  bool same = true;
  vtrfile::for_each_section([&](const auto& section) {
    std::string written, found;
    vtrfile::RecordWriter(written).write(*(document.*section.kSlot));
    vtrfile::RecordWriter(found).write(*(reader.CurrentSlots().*section.kSlot));
    same = same && written == found;
    sizes.push_back(written.size());
  });
  return same ? std::optional(sizes) : std::nullopt;
}

std::string number_of(const std::optional<std::int64_t>& number) { return number ? std::to_string(*number) : "?"; }

// Tenths of a percent, rounded down: only a file of which nothing is missing has all of it.
std::string share(std::uint64_t part, std::uint64_t whole) {
  const double tenths = whole == 0 ? 0 : static_cast<double>(part) * 1000.0 / static_cast<double>(whole);
  const auto full = static_cast<std::uint64_t>(tenths);
  return std::to_string(full / 10) + '.' + std::to_string(full % 10) + '%';
}

void print(const RecoveryAccount& account) {
  constexpr int kNameWidth = 26, kFateWidth = 30, kNumberWidth = 12;
  const auto row = [](const std::string& name, const std::string& fate) -> std::ostream& {
    return std::cerr << std::left << std::setw(kNameWidth) << name << std::setw(kFateWidth) << fate << std::right
                     << std::setw(kNumberWidth);
  };
  row("part", "outcome") << "bytes read" << std::setw(kNumberWidth) << "kept" << '\n';
  for (const KeptPart& part : account.parts) {
    row(std::string(part.name), text_of(part.fate).title) << part.read << std::setw(kNumberWidth) << part.kept << '\n';
    for (const KeptList& list : part.lists) {
      if (list.announced == 0 && list.kept == 0) continue;
      std::cerr << "  " << std::left << std::setw(kNameWidth - 2) << list.title << number_of(list.kept) << " of "
                << number_of(list.announced) << " records\n";
    }
  }
  std::cerr << "kept " << account.kept << " of " << account.bytes << " bytes (" << share(account.kept, account.bytes)
            << ")\n";
  if (account.behind_end > 0) {
    std::cerr << account.behind_end << " bytes behind the end tag are no part of the document\n";
  }
}

Json to_json(const KeptPart& part) {
  const auto number = [](const std::optional<std::int64_t>& value) { return value ? Json(*value) : Json(); };
  Json lists = Json::object();
  for (const KeptList& list : part.lists) {
    lists[list.key] = {{"announced", number(list.announced)}, {"kept", number(list.kept)}};
  }
  return {{"outcome", text_of(part.fate).key}, {"bytesRead", part.read}, {"bytesKept", part.kept}, {"lists", lists}};
}

void print_json(const RecoveryTask& task, const std::string& output, const RecoveryAccount& account,
                const std::u16string& message, const std::optional<vtrfile::ReadError>& damage) {
  Json parts = Json::object();
  for (const KeptPart& part : account.parts) parts[std::string(part.name)] = to_json(part);
  show_json({{"file", task.file},
             {"output", output},
             {"log", task.log.empty() ? Json() : Json(task.log)},
             {"nothingLost", account.nothing_lost},
             {"damage", damage ? damage_json(*damage) : Json()},
             {"bytes", account.bytes},
             {"bytesKept", account.kept},
             {"parts", parts},
             {"message", platform::to_utf8(message)}});
}

// Reads the file; false when there is nothing in it to recover, of which the user has been told.
bool read_damaged(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, std::u16string& message) {
  if (read(machine, utility, file, message) == kTrouble) return false;
  if (utility.LastParts().front().whole) return true;
  complain(file + ": " + damage_text(*utility.LastDamage()) + "; without a header nothing can be recovered" +
           kNothingWritten);
  return false;
}

// The files to write; the log is empty when none is asked for.
struct Targets {
  std::u16string output, log;
};

// Nothing when one of them can't be written, of which the user has been told.
std::optional<Targets> targets_of(const HostServices& services, const RecoveryTask& task) {
  Targets targets;
  targets.output = output_path(services, task.file, task.output, u"Recovered");
  if (targets.output.empty()) return {};
  if (task.log.empty()) return targets;
  targets.log = output_path(services, task.file, task.log, u"Log");
  if (targets.log.empty()) return {};
  if (!same_place(services.files, targets.log, targets.output)) return targets;
  complain(task.log + ": the log can't be the recovered file itself; name another one" + kNothingWritten);
  return {};
}

// Writes a log that isn't in its place yet.
void write_log(platform::StagedFiles& files, const std::u16string& path, const std::string& text) {
  const auto log = files.OpenBinaryOutput(path);
  log->Write(text);
  log->Close();
}

}  // namespace

ExitStatus recover(const Settings& settings, const RecoveryTask& task) {
  Machine machine(settings);
  platform::StagedFiles output_files(machine.services().files), log_files(machine.services().files);
  TarvelVtrOut_InOut utility(machine.services(output_files));
  std::u16string message;
  if (!read_damaged(machine, utility, task.file, message)) return kTrouble;
  std::error_code none;
  const auto bytes = std::filesystem::file_size(task.file, none);
  auto targets = targets_of(machine.services(), task);
  if (!targets) return kTrouble;

  const std::string output = platform::machine_path(targets->output);
  const auto trouble = [&](const std::string& what) {
    complain(output + ": " + what + kNothingWritten);
    return kTrouble;
  };
  Progress progress;
  progress.show("Writing " + output);
  const DocumentState before = state_of(utility, machine.locale());
  if (!utility.RecoverVTR(targets->output, message)) return trouble(utility.LastFailure());
  progress.show("Checking " + output);
  const auto written = read_back(machine.services(), output_files.content_path(), utility.CurrentSlots());
  if (!written) return trouble("what was written doesn't read back as the same document");
  try {
    if (!targets->log.empty()) write_log(log_files, targets->log, machine.locale().Encode(message));
    output_files.commit();
  } catch (const ServiceError& error) {
    return trouble(error.what());
  }
  progress.show({});

  const RecoveryAccount account =
      account_for_recovery(before, state_of(utility, machine.locale()), utility.LastParts(), *written, bytes);
  if (utility.LastDamage()) complain(task.file + ": " + damage_text(*utility.LastDamage()));
  if (task.json) {
    print_json(task, output, account, message, utility.LastDamage());
  } else {
    print(account);
    std::cout << output << std::endl;
  }
  if (!targets->log.empty()) log_files.commit();
  return account.nothing_lost ? kFine : kRemarkable;
}

}  // namespace trvtrout::host
