#include <optional>

#include "component/read_back.h"
#include "exchange/json_document.h"
#include "host/commands.h"
#include "host/exchanged_texts.h"
#include "host/new_file.h"
#include "platform/files/path.h"
#include "platform/files/staged_files.h"

namespace trvtrout::host {
namespace {

exchange::FilePieces pieces_of(Files& files, const std::string& document) {
  const auto file = files.OpenBinary(platform::class_path(document));
  const auto source = [&](std::span<char> into) {
    return file->Read({reinterpret_cast<unsigned char*>(into.data()), into.size()});
  };
  return exchange::read_document(source, texts_of);
}

void write(const exchange::FilePieces& pieces, BinaryOutput& file) {
  for (const std::string& piece : pieces) file.Write(piece);
  file.Close();
}

}  // namespace

ExitStatus import_document(const Settings& settings, const ImportTask& task) {
  Machine machine(settings);
  const HostServices services = machine.services();
  const auto trouble = [](const std::string& file, const std::string& what) {
    complain(file + ": " + what + kNothingWritten);
    return kTrouble;
  };
  Progress progress;
  try {
    progress.show("Reading " + task.document);
    const exchange::FilePieces pieces = pieces_of(services.files, task.document);
    progress.show({});
    const auto target = target_for(services, {task.document, "the document", task.output, u"Recovered"});
    if (!target) return kTrouble;
    const std::string output = platform::machine_path(target->path);
    progress.show("Writing " + output);
    platform::StagedFiles staged(services.files, task.document);
    write(pieces, *staged.OpenBinaryOutput(target->path));
    progress.show("Checking " + output);
    if (!reads_back(services, staged.content_path(), pieces)) {
      return trouble(output, "what was written doesn't read back as the same document");
    }
    staged.commit(target->replaces);
    progress.show({});
    std::cout << output << std::endl;
    return kFine;
  } catch (const exchange::ImportError& error) {
    return trouble(task.document, error.what());
  } catch (const ServiceError& error) {
    complain(error.what() + std::string(kNothingWritten));
    return kTrouble;
  }
}

}  // namespace trvtrout::host
