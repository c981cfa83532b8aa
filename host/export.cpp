#include <optional>

#include "exchange/json_document.h"
#include "host/commands.h"
#include "host/exchanged_texts.h"
#include "host/new_file.h"
#include "platform/files/path.h"
#include "platform/files/staged_files.h"

namespace trvtrout::host {
namespace {

constexpr const char* kNothingExported = "; nothing was exported";

// The documents that are exported, one after the other. Only a document that is there as a whole can be: what other
// programs are given, they take for all of it.
class Documents {
 public:
  explicit Documents(Machine& machine) : machine_(machine) {}

  // Reads the file into a document of its own; null when it can't be exported, of which the user has been told.
  std::unique_ptr<TarvelVtrOut_InOut> read_whole(const std::string& file);
  // kRemarkable when something of a document was left behind.
  ExitStatus status() const { return status_; }

 private:
  Machine& machine_;
  ExitStatus status_ = kFine;
};

std::unique_ptr<TarvelVtrOut_InOut> Documents::read_whole(const std::string& file) {
  auto utility = std::make_unique<TarvelVtrOut_InOut>(machine_.services());
  std::u16string structure_list;
  const ExitStatus read_status = read(machine_, *utility, file, structure_list);
  if (read_status == kTrouble) return nullptr;
  if (read_status == kRemarkable) {
    const auto& damage = utility->LastDamage();
    complain(file + ": " + (damage ? damage_text(*damage) : "damaged") + kNothingExported +
             ": save what can be read of it with vtrout recover, and export that");
    return nullptr;
  }
  for (const vtrfile::PartRead& part : utility->LastRead().parts) {
    if (part.carried != vtrfile::Carried::kPart) continue;
    complain(file + ": it's of the old format, and some of its product's values have no place in the current one");
    status_ = kRemarkable;
  }
  return utility;
}

ExitStatus export_json(Machine& machine, const Settings& settings, const ExportTask& task,
                       const exchange::JsonWriter::Sink& sink) {
  Documents documents(machine);
  const auto utility = documents.read_whole(task.files.front());
  if (!utility) return kTrouble;
  using Layout = exchange::JsonWriter::Layout;
  exchange::JsonWriter json(sink, task.pretty ? Layout::kPretty : Layout::kCompact);
  exchange::Texts texts = texts_of(settings.code_page);
  write_document(json, texts, utility->CurrentSlots());
  json.flush();
  return documents.status();
}

// Where text goes: stdout, or a file that takes its place when it's whole.
template <class Write>
ExitStatus export_text(Machine& machine, const ExportTask& task, Write write) {
  if (task.output.empty()) {
    return write(
        [](std::string_view bytes) { std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size())); });
  }
  const HostServices services = machine.services();
  for (const std::string& file : task.files) {
    if (services.files.SameFile(platform::class_path(task.output), platform::class_path(file))) {
      complain(task.output + ": that's the document itself, which is never overwritten; name another file" +
               kNothingExported);
      return kTrouble;
    }
  }
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

}  // namespace

ExitStatus export_documents(const Settings& settings, const ExportTask& task) {
  Machine machine(settings);
  try {
    return export_text(machine, task, [&](const exchange::JsonWriter::Sink& sink) {
      return export_json(machine, settings, task, sink);
    });
  } catch (const ServiceError& error) {
    complain(std::string(error.what()) + kNothingExported);
    return kTrouble;
  }
}

}  // namespace trvtrout::host
