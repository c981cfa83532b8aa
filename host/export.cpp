#include <algorithm>

#include "component/document_kind.h"
#include "exchange/database_export.h"
#include "exchange/json_document.h"
#include "exchange/lines.h"
#include "host/batch/batch.h"
#include "host/commands.h"
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

// A document that is exported, with all that it stands on.
struct Document {
  explicit Document(const Settings& settings) : machine(settings), utility(machine.services()) {}

  Machine machine;
  TarvelVtrOut_InOut utility;
  exchange::DocumentFile file = {};  // for a database
};

// Which documents are exported, and how.
struct Export {
  const Settings& settings;
  const InputOptions& options;
  const ExportTask& task;
  const std::vector<Input>& files;
  bool is_one;
};

// What came of it.
struct ExportEnd {
  BatchEnd batch;
  std::size_t documents = 0;  // that were put where they go

  bool may_commit() const { return documents > 0 && batch.signal == 0; }
};

// kTrouble when the document can't be exported, of which the user has been told: only one that is there as a whole can
// be, for what other programs are given, they take for all of it. kRemarkable when something of it was left behind.
ExitStatus read_whole(const Export& exported, const std::string& file, Document& document) {
  const TarvelVtrOut_InOut& utility = document.utility;
  std::u16string structure_list;
  ExitStatus status = read_saving(document.machine, document.utility, file, exported.task.salvage, structure_list);
  if (status == kTrouble) return status;
  if (status == kRemarkable && !utility.LastSalvage()) {
    const auto& damage = utility.LastDamage();
    complain(file + ": " + (damage ? damage_text(*damage) : "damaged") +
             (exported.is_one ? kNothingExported : "; it wasn't exported") +
             ": --salvage exports what vtrout recover would save of it");
    return kTrouble;
  }
  for (const vtrfile::PartRead& part : utility.LastRead().parts) {
    if (part.carried != vtrfile::Carried::kPart) continue;
    complain(file + ": " + vtrfile::kPartlyCarried);
    status = kRemarkable;
  }
  return status;
}

exchange::DocumentFile file_in_database(Files& files, const std::string& file) {
  const auto bytes = files.OpenBinary(platform::class_path(file));
  const auto digest = platform::sha256([&](std::span<unsigned char> into) { return bytes->Read(into); });
  return exchange::document_file(file, bytes->Size(), platform::hex(digest));
}

// Reads the documents, several at a time, and puts those that can be exported where they go, one after the other.
ExportEnd put_each(const Export& exported,
                   const std::function<void(const std::string& file, const Document& document)>& put) {
  ExportEnd end;
  std::vector<std::unique_ptr<Document>> read(exported.files.size());
  const auto read_one = [&](const Settings& settings, std::size_t number) {
    const std::string& file = exported.files[number].path;
    auto document = std::make_unique<Document>(settings);
    const ExitStatus status = read_whole(exported, file, *document);
    if (status == kTrouble) return status;
    if (exported.task.form == ExportForm::kDatabase) {
      document->file = file_in_database(document->machine.services().files, file);
    }
    read[number] = std::move(document);
    return status;
  };
  const auto put_one = [&](std::size_t number) {
    const auto document = std::move(read[number]);
    if (!document) return;
    Progress progress;
    progress.show("Exporting " + exported.files[number].path);
    put(exported.files[number].path, *document);
    ++end.documents;
  };
  if (exported.is_one) {
    end.batch.status = run_one(exported.options, "export", exported.files.front().path, [&] {
      const ExitStatus status = read_one(exported.settings, 0);
      put_one(0);
      return status;
    });
    return end;
  }
  Batch batch{.subcommand = "export", .remark = "incomplete", .work = read_one, .ahead = 1};
  for (const Input& file : exported.files) batch.files.push_back(file.path);
  batch.told = [&](std::size_t number, FileOutcome&) { put_one(number); };
  end.batch = run_batch(exported.settings, exported.options, batch);
  if (end.batch.signal != 0) complain("nothing was exported, because not all files could be");
  return end;
}

using Layout = exchange::JsonWriter::Layout;

ExportEnd write_text(const Export& exported, const exchange::JsonWriter::Sink& sink) {
  exchange::JsonWriter json(sink, exported.task.pretty ? Layout::kPretty : Layout::kCompact);
  exchange::Texts texts = texts_of(exported.settings.code_page);
  ExportEnd end = put_each(exported, [&](const std::string& file, const Document& document) {
    const vtrfile::DocumentSlots& slots = document.utility.CurrentSlots();
    if (exported.task.form == ExportForm::kJson) return write_document(json, texts, slots);
    exchange::write_lines(json, texts, text::valid_utf8(file), slots);
  });
  json.flush();
  return end;
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

constexpr BatchEnd kNotBegun{.status = kTrouble};

// Text goes to stdout, or to a file that takes its place when it's whole.
ExportEnd export_text(Machine& machine, const Export& exported) {
  const ExportTask& task = exported.task;
  if (task.output.empty()) {
    return write_text(exported, [](std::string_view bytes) {
      std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
  }
  const HostServices services = machine.services();
  if (is_document(services.files, task)) return {kNotBegun};
  const std::string& first = exported.files.front().path;
  const auto target = target_for(services, {first, "the document", task.output, u"Export"});
  if (!target) return {kNotBegun};
  platform::StagedFiles staged(services.files, first);
  const auto file = staged.OpenBinaryOutput(target->path);
  const ExportEnd end = write_text(exported, [&](std::string_view bytes) { file->Write(bytes); });
  if (!end.may_commit()) return end;
  file->Close();
  staged.commit(target->replaces);
  std::cout << platform::machine_path(target->path) << std::endl;
  return end;
}

ExportEnd export_to_database(Machine& machine, const Export& exported) {
  const std::string& output = exported.task.output;
  if (is_document(machine.services().files, exported.task)) return {kNotBegun};
  exchange::DatabaseExport target(output, texts_of(exported.settings.code_page));
  const ExportEnd end = put_each(exported, [&](const std::string&, const Document& document) {
    target.put(document.file, document.utility.CurrentSlots());
  });
  if (!end.may_commit()) return end;
  target.commit();
  std::cout << output << std::endl;
  return end;
}

}  // namespace

ExitStatus export_documents(const Settings& settings, const InputOptions& given_options, const ExportTask& given) {
  InputOptions options = given_options;
  ExportTask task = given;
  // The name behind a form without another is that of the file: "vtrout export --json plant.vtr".
  if (options.operands.empty() && options.files_from.empty() && task.form != ExportForm::kDatabase &&
      !task.output.empty()) {
    options.operands.push_back(std::exchange(task.output, {}));
  }
  if (!has_operands(options, "export")) return kTrouble;
  const bool is_one = is_one_file(options);
  if (task.form == ExportForm::kJson && !is_one) {
    complain("--json takes one file; --ndjson and --sqlite take several");
    return kTrouble;
  }
  const InputList list = is_one ? InputList{{{options.operands.front()}}} : list_inputs(options);
  if (list.files.empty()) return list.is_whole ? kFine : kTrouble;
  Machine machine(settings);
  const Export exported{settings, options, task, list.files, is_one};
  try {
    const ExportEnd end = (task.form == ExportForm::kDatabase ? export_to_database : export_text)(machine, exported);
    return std::max(finish_batch(end.batch), list.is_whole ? kFine : kTrouble);
  } catch (const ServiceError& error) {
    complain(std::string(error.what()) + kNothingExported);
  } catch (const exchange::DatabaseError& error) {
    complain(std::string(error.what()) + "; the database is as it was");
  }
  return kTrouble;
}

}  // namespace trvtrout::host
