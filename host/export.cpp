#include <algorithm>

#include "exchange/database_export.h"
#include "exchange/json_document.h"
#include "exchange/lines.h"
#include "host/commands.h"
#include "component/document_kind.h"
#include "host/exchanged_texts.h"
#include "host/new_file.h"
#include "host/read_saving.h"
#include "platform/files/path.h"
#include "platform/files/sha256.h"
#include "platform/files/staged_files.h"
#include "text/utf8.h"

namespace trvtrout::host {
namespace {

constexpr const char* kNothingExported = "; nothing was exported";

// The documents that are exported, one after the other. Only a document that is there as a whole can be: what other
// programs are given, they take for all of it.
class Documents {
 public:
  Documents(Machine& machine, bool salvage) : machine_(machine), salvage_(salvage) {}

  // Reads the file into a document of its own; null when it can't be exported, of which the user has been told.
  std::unique_ptr<TarvelVtrOut_InOut> read_whole(const std::string& file);
  // kRemarkable when something of a document was left behind.
  ExitStatus status() const { return status_; }

 private:
  Machine& machine_;
  bool salvage_;
  ExitStatus status_ = kFine;
};

std::unique_ptr<TarvelVtrOut_InOut> Documents::read_whole(const std::string& file) {
  auto utility = std::make_unique<TarvelVtrOut_InOut>(machine_.services());
  std::u16string structure_list;
  const ExitStatus read_status = read_saving(machine_, *utility, file, salvage_, structure_list);
  if (read_status == kTrouble) return nullptr;
  if (utility->LastSalvage()) {
    status_ = kRemarkable;
  } else if (read_status == kRemarkable) {
    const auto& damage = utility->LastDamage();
    complain(file + ": " + (damage ? damage_text(*damage) : "damaged") + kNothingExported +
             ": --salvage exports what vtrout recover would save of it");
    return nullptr;
  }
  for (const vtrfile::PartRead& part : utility->LastRead().parts) {
    if (part.carried != vtrfile::Carried::kPart) continue;
    complain(file + ": it's of the old format, and some of its product's values have no place in the current one");
    status_ = kRemarkable;
  }
  return utility;
}

using Layout = exchange::JsonWriter::Layout;

ExitStatus write_json(Machine& machine, const Settings& settings, const ExportTask& task,
                      const exchange::JsonWriter::Sink& sink) {
  Documents documents(machine, task.salvage);
  const auto utility = documents.read_whole(task.files.front());
  if (!utility) return kTrouble;
  exchange::JsonWriter json(sink, task.pretty ? Layout::kPretty : Layout::kCompact);
  exchange::Texts texts = texts_of(settings.code_page);
  write_document(json, texts, utility->CurrentSlots());
  json.flush();
  return documents.status();
}

ExitStatus write_lines(Machine& machine, const Settings& settings, const ExportTask& task,
                       const exchange::JsonWriter::Sink& sink) {
  Documents documents(machine, task.salvage);
  exchange::JsonWriter json(sink);
  exchange::Texts texts = texts_of(settings.code_page);
  for (const std::string& file : task.files) {
    const auto utility = documents.read_whole(file);
    if (!utility) return kTrouble;
    exchange::write_lines(json, texts, text::valid_utf8(file), utility->CurrentSlots());
  }
  json.flush();
  return documents.status();
}

// Whether the output would be written over a VTR file, of which the user has been told then. Who names it behind the
// form in place of in front of it loses nothing.
bool is_document(Files& files, const ExportTask& task) {
  const std::u16string output = platform::class_path(task.output);
  const bool stands = files.CreateFileSystemObject()->FileExists(output);
  const bool is = stands && begins_as_document(files, output);
  if (is) {
    complain(task.output + ": that's a VTR file, which is never overwritten here; name the files to export first" +
             kNothingExported);
  }
  return is;
}

// Where text goes: stdout, or a file that takes its place when it's whole.
template <class Write>
ExitStatus export_text(Machine& machine, const ExportTask& task, Write write) {
  if (task.output.empty()) {
    return write(
        [](std::string_view bytes) { std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); });
  }
  const HostServices services = machine.services();
  if (is_document(services.files, task)) return kTrouble;
  const auto target = target_for(services, {task.files.front(), "the document", task.output, u"Export"});
  if (!target) return kTrouble;
  platform::StagedFiles staged(services.files, task.files.front());
  const auto file = staged.OpenBinaryOutput(target->path);
  const ExitStatus status = write([&](std::string_view bytes) { file->Write(bytes); });
  if (status == kTrouble) return status;
  file->Close();
  staged.commit(target->replaces);
  std::cout << platform::machine_path(target->path) << std::endl;
  return status;
}

exchange::DocumentFile file_in_database(Files& files, const std::string& file) {
  const auto bytes = files.OpenBinary(platform::class_path(file));
  const auto digest = platform::sha256([&](std::span<unsigned char> into) { return bytes->Read(into); });
  return exchange::document_file(file, bytes->Size(), platform::hex(digest));
}

ExitStatus export_to_database(Machine& machine, const Settings& settings, const ExportTask& task) {
  Files& files = machine.services().files;
  if (is_document(files, task)) return kTrouble;
  exchange::DatabaseExport target(task.output, texts_of(settings.code_page));
  Documents documents(machine, task.salvage);
  for (const std::string& file : task.files) {
    const auto utility = documents.read_whole(file);
    if (!utility) return kTrouble;
    Progress progress;
    progress.show("Exporting " + file);
    target.put(file_in_database(files, file), utility->CurrentSlots());
  }
  target.commit();
  std::cout << task.output << std::endl;
  return documents.status();
}

}  // namespace

ExitStatus export_documents(const Settings& settings, const ExportTask& given) {
  ExportTask task = given;
  // The name behind a form without another is that of the file: "vtrout export --json plant.vtr".
  if (task.files.empty() && task.form != ExportForm::kDatabase) task.files.push_back(std::exchange(task.output, {}));
  if (task.files.empty() || task.files.front().empty()) {
    complain("FILE is required; see vtrout help export");
    return kTrouble;
  }
  if (task.form == ExportForm::kJson && task.files.size() > 1) {
    complain("--json takes one file; --ndjson and --sqlite take several");
    return kTrouble;
  }
  Machine machine(settings);
  try {
    if (task.form == ExportForm::kDatabase) return export_to_database(machine, settings, task);
    return export_text(machine, task, [&](const exchange::JsonWriter::Sink& sink) {
      return (task.form == ExportForm::kJson ? write_json : write_lines)(machine, settings, task, sink);
    });
  } catch (const ServiceError& error) {
    complain(std::string(error.what()) + kNothingExported);
  } catch (const exchange::DatabaseError& error) {
    complain(std::string(error.what()) + "; the database is as it was");
  }
  return kTrouble;
}

}  // namespace trvtrout::host
