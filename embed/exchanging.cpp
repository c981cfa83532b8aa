#include <vector>

#include "component/document_kind.h"
#include "component/read_back.h"
#include "differences/path_filter.h"
#include "embed/arguments.h"
#include "embed/call.h"
#include "exchange/database_export.h"
#include "exchange/differences_json.h"
#include "exchange/json_document.h"
#include "exchange/lines.h"
#include "platform/files/path.h"
#include "platform/files/sha256.h"
#include "reports/naming.h"

// The calls that tell differences, hand documents to other programs, and write new files.
using namespace trvtrout;
using namespace trvtrout::embed;

namespace {

using differences::Tell;
using exchange::JsonWriter;

// Raises Refusal where a document isn't all of its file: others would take what is there for all of it.
void require_whole(const Document& document) {
  if (!document.damaged) return;
  throw Refusal(TRVTROUT_DAMAGED, document.source + ": damaged; trvtrout_salvage reads what can be saved of it");
}

// What is written to a callback of the host.
JsonWriter::Sink sink_of(Document& at, trvtrout_write write, void* context) {
  place(write, "write");
  return [&at, write, context, done = std::uint64_t{0}](std::string_view bytes) mutable {
    at.watch.require_going();
    if (write(context, bytes.data(), bytes.size()) != 0) at.watch.raise_stopped();
    at.watch.at_output(done += bytes.size());
  };
}

exchange::Texts texts_of(int code_page) { return {code_page, platform::shared_code_page(code_page)}; }

std::vector<std::string> patterns(const char* const* given, std::size_t count, const char* name) {
  // More than a person or a program would give was never set.
  constexpr std::size_t kMost = 65536;
  if (count > kMost) throw Refusal(TRVTROUT_INVALID_ARGUMENT, std::string(name) + " has too many patterns");
  std::vector<std::string> all;
  for (std::size_t at = 0; at < count; ++at) {
    all.push_back(text::to_utf8(text_of(place(given, name) ? given[at] : nullptr, name)));
  }
  return all;
}

differences::PathFilter filter_of(const trvtrout_diff_options* given) {
  const trvtrout_diff_options options = given ? struct_of(given, "options") : trvtrout_diff_options{};
  return {patterns(options.only, options.only_count, "only"), patterns(options.ignore, options.ignore_count, "ignore")};
}

trvtrout_result diff(Document& at, Document& other, const differences::PathFilter& filter, trvtrout_write write,
                     void* context, trvtrout_diff_counts* counts) {
  const auto& old_slots = at.utility.CurrentSlots();
  const auto& new_slots = other.utility.CurrentSlots();
  const auto of_document = [&](const Tell& tell) {
    differences::find_differences(old_slots, new_slots, [&](const differences::Difference& difference) {
      at.watch.require_going();
      if (filter.chooses(difference)) tell(difference);
    });
  };
  at.watch.require_going();
  exchange::DifferencesHead head{at.source, other.source, {}};
  of_document([&](const differences::Difference& difference) { head.counts.add(difference); });
  if (write) {
    JsonWriter json(sink_of(at, write, context));
    exchange::Texts texts = texts_of(at.code_page());
    write_differences(
        json, texts, head, [&](const Tell& tell) { differences::find_header_differences(old_slots, new_slots, tell); },
        of_document);
  }
  const auto& of_kind = head.counts.of_kind;
  if (counts) give(counts, {0, 0, of_kind[0], of_kind[1], of_kind[2], of_kind[3]}, "counts");
  return TRVTROUT_OK;
}

// Of the old format some values have no place in what is made.
trvtrout_result carried(Document& at) {
  for (const vtrfile::PartRead& part : at.utility.LastRead().parts) {
    if (part.carried != vtrfile::Carried::kPart) continue;
    at.message = at.source + ": " + vtrfile::kPartlyCarried;
    return TRVTROUT_INCOMPLETE;
  }
  return TRVTROUT_OK;
}

trvtrout_result export_to(Document& at, std::int32_t form, const JsonWriter::Sink& sink) {
  if (form < TRVTROUT_JSON || form > TRVTROUT_LINES) {
    throw Refusal(TRVTROUT_INVALID_ARGUMENT, "form " + std::to_string(form) + " is none");
  }
  require_whole(at);
  exchange::Texts texts = texts_of(at.code_page());
  JsonWriter json(sink, form == TRVTROUT_JSON_PRETTY ? JsonWriter::Layout::kPretty : JsonWriter::Layout::kCompact);
  if (form == TRVTROUT_LINES) {
    write_lines(json, texts, at.source, at.utility.CurrentSlots());
  } else {
    write_document(json, texts, at.utility.CurrentSlots());
  }
  json.flush();
  return carried(at);
}

trvtrout_result export_database(Document& at, const std::u16string& database) {
  require_whole(at);
  Files& files = at.services().files;
  const std::string path = platform::machine_path(database);
  if (at.source.empty()) throw Refusal(TRVTROUT_INVALID_ARGUMENT, "nothing was read");
  if (files.CreateFileSystemObject()->FileExists(database) && begins_as_document(files, database)) {
    throw Refusal(TRVTROUT_INVALID_ARGUMENT, path + ": that's a VTR file, which is never overwritten here");
  }
  const auto source = files.OpenBinary(platform::class_path(at.source));
  const auto digest = platform::sha256([&](std::span<unsigned char> into) { return source->Read(into); });
  exchange::DatabaseExport target(path, texts_of(at.code_page()));
  target.put(exchange::document_file(at.source, source->Size(), platform::hex(digest)), at.utility.CurrentSlots(),
             [&] { at.watch.require_going(); });
  target.commit();
  return carried(at);
}

struct Target {
  std::u16string path;
  bool replaces;
};

// Where a new file goes that is made of the file at `source`; asks about one that stands there.
Target target_for(Document& at, const std::u16string& source, const std::u16string& path) {
  const HostServices services = at.services();
  at.watch.require_going();
  const OutputName name = ConfirmOutputFileName(services, source, u"Recovered", path);
  if (at.declined) throw Refusal(TRVTROUT_DECLINED, "the existing file was left as it is");
  if (name.path.empty()) throw Refusal(TRVTROUT_FAILED, name.failure);
  const std::string shown = platform::machine_path(name.path);
  if (services.files.SameFile(name.path, source)) {
    throw Refusal(TRVTROUT_INVALID_ARGUMENT, shown + ": that's the file that was read, which is never overwritten");
  }
  return {name.path, name.asked && services.files.CreateFileSystemObject()->FileExists(name.path)};
}

void put(Document& at, const Target& target, bool same) {
  if (at.watch.stopped()) throw Stopped();
  if (same) return at.new_files.commit(target.replaces);
  throw Refusal(TRVTROUT_FAILED, platform::machine_path(target.path) +
                                     ": what was written doesn't read back as the same document; nothing was written");
}

trvtrout_result recover(Document& at, const std::u16string& path, char** account) {
  if (at.source.empty()) throw Refusal(TRVTROUT_INVALID_ARGUMENT, "nothing was read");
  Target target = target_for(at, platform::class_path(at.source), path);
  std::u16string message;
  if (!at.utility.RecoverVTR(target.path, message)) return failure_of(at);
  put(at, target, read_back(at.services(), at.new_files.content_path(), at.utility.CurrentSlots()).has_value());
  if (account) *account = handed_out(valid_text(message));
  return TRVTROUT_OK;
}

trvtrout_result import(Document& at, const std::u16string& json, const std::u16string& path) {
  const HostServices services = at.services();
  const auto file = services.files.OpenBinary(json);
  const exchange::FilePieces pieces = exchange::read_document(
      [&](std::span<char> into) {
        return file->Read({reinterpret_cast<unsigned char*>(into.data()), into.size()});
      },
      texts_of);
  const Target target = target_for(at, json, path);
  const auto output = services.files.OpenBinaryOutput(target.path);
  for (const std::string& piece : pieces) output->Write(piece);
  output->Close();
  put(at, target, reads_back(services, at.new_files.content_path(), pieces));
  return TRVTROUT_OK;
}

}  // namespace

extern "C" {

trvtrout_result trvtrout_diff(trvtrout_document* old_document, trvtrout_document* new_document,
                              const trvtrout_diff_options* options, trvtrout_write write, void* context,
                              trvtrout_diff_counts* counts) {
  return call(old_document, [=](Document& at) {
    if (counts) require_size(counts->struct_size, sizeof *counts, "counts");
    SecondDocument other(new_document, at);
    require_whole(at);
    require_whole(*other);
    return diff(at, *other, filter_of(options), write, context, counts);
  });
}

trvtrout_result trvtrout_export(trvtrout_document* document, int32_t form, trvtrout_write write, void* context) {
  return call(document, [=](Document& at) { return export_to(at, form, sink_of(at, write, context)); });
}

trvtrout_result trvtrout_export_database(trvtrout_document* document, const char* database) {
  return call(document, [=](Document& at) { return export_database(at, path_of(database, "database")); });
}

trvtrout_result trvtrout_recover(trvtrout_document* document, const char* path, char** account) {
  return call(document, [=](Document& at) {
    if (account) *account = nullptr;
    return recover(at, path_of(path, "path"), account);
  });
}

trvtrout_result trvtrout_import(trvtrout_document* document, const char* json, const char* path) {
  return call(document, [=](Document& at) { return import(at, path_of(json, "json"), path_of(path, "path")); });
}

}  // extern "C"
