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

// Writes a log that isn't in its place yet.
void write_log(platform::StagedFiles& files, const std::u16string& path, const std::string& text) {
  const auto log = files.OpenBinaryOutput(path);
  log->Write(text);
  log->Close();
}

}  // namespace

ExitStatus recover(const Settings& settings, const RecoveryTask& task) {
  Machine machine(settings);
  Files& files = machine.services().files;
  platform::StagedFiles output_files(files), log_files(files);
  TarvelVtrOut_InOut utility(machine.services(output_files));
  std::u16string message;
  if (read(machine, utility, task.file, message) == kTrouble) return kTrouble;
  if (!utility.LastParts().front().whole) {
    complain(task.file + ": " + damage_text(*utility.LastDamage()) + "; without a header nothing can be recovered" +
             kNothingWritten);
    return kTrouble;
  }
  std::error_code none;
  const auto bytes = std::filesystem::file_size(task.file, none);

  std::u16string output = output_path(machine.services(), task.file, task.output, u"Recovered");
  if (output.empty()) return kTrouble;
  const std::string shown = platform::machine_path(output);
  std::u16string log;
  if (!task.log.empty()) {
    log = output_path(machine.services(), task.file, task.log, u"Log");
    if (log.empty()) return kTrouble;
    if (same_place(files, log, output)) {
      complain(shown + ": the log can't be the recovered file itself; name another one" + kNothingWritten);
      return kTrouble;
    }
  }

  Progress progress;
  progress.show("Writing " + shown);
  const DocumentState before = state_of(utility, machine.locale());
  if (!utility.RecoverVTR(output, message)) {
    complain(shown + ": " + utility.LastFailure() + kNothingWritten);
    return kTrouble;
  }
  progress.show("Checking " + shown);
  const auto written = read_back(machine.services(), output_files.content_path(), utility.CurrentSlots());
  if (!written) {
    complain(shown + ": what was written doesn't read back as the same document" + kNothingWritten);
    return kTrouble;
  }
  try {
    if (!log.empty()) write_log(log_files, log, machine.locale().Encode(message));
    output_files.commit();
  } catch (const ServiceError& error) {
    complain(error.what() + std::string(kNothingWritten));
    return kTrouble;
  }
  progress.show({});

  const RecoveryAccount account =
      account_for_recovery(before, state_of(utility, machine.locale()), utility.LastParts(), *written, bytes);
  if (utility.LastDamage()) complain(task.file + ": " + damage_text(*utility.LastDamage()));
  if (task.json) {
    print_json(task, shown, account, message, utility.LastDamage());
  } else {
    print(account);
    std::cout << shown << std::endl;
  }
  if (!log.empty()) log_files.commit();
  return account.nothing_lost ? kFine : kRemarkable;
}

}  // namespace trvtrout::host
