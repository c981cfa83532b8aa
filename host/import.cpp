#include <optional>

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

// Whether the file holds these bytes and no other.
bool holds(BinaryFile& file, const exchange::FilePieces& pieces) {
  constexpr std::size_t kRoom = 65536;
  std::string room(kRoom, '\0');
  const auto read = [&](std::size_t size) {
    return file.Read({reinterpret_cast<unsigned char*>(room.data()), std::min(size, kRoom)});
  };
  for (const std::string& piece : pieces) {
    for (std::size_t at = 0; at < piece.size();) {
      const std::size_t count = read(piece.size() - at);
      if (count == 0 || piece.compare(at, count, room, 0, count) != 0) return false;
      at += count;
    }
  }
  return read(1) == 0;
}

// Whether the file reads to its end, each part where its piece was written.
bool reads_as_written(const HostServices& services, std::u16string path, const exchange::FilePieces& pieces) {
  TarvelVtrOut_InOut reader(services);
  std::u16string list;
  Boolean primary = False;
  if (!reader.ReadVTR(path, list, primary) || !reader.LastRead().gaps.empty()) return false;
  const auto& parts = reader.LastRead().parts;
  if (parts.size() != pieces.size() / 2 + 1) return false;
  std::uint64_t end = pieces.front().size();
  for (std::size_t part = 0; part < parts.size(); ++part) {
    if (part > 0) end += pieces[2 * part - 1].size();
    if (part > 0 && part + 1 < parts.size()) end += pieces[2 * part].size();
    if (!parts[part].whole || parts[part].end != end) return false;
  }
  return true;
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
    if (!holds(*services.files.OpenBinary(staged.content_path()), pieces) ||
        !reads_as_written(services, staged.content_path(), pieces)) {
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
