#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <map>
#include <optional>
#include <unistd.h>

#include "differences/difference_counts.h"
#include "differences/path_filter.h"
#include "exchange/differences_json.h"
#include "host/commands.h"
#include "host/exchanged_texts.h"
#include "host/new_file.h"
#include "host/output_buffer.h"
#include "host/page/differences_page.h"
#include "host/read_whole.h"
#include "host/terminal/differences_text.h"
#include "host/terminal/paged_output.h"
#include "platform/console/printable.h"
#include "platform/files/path.h"
#include "platform/files/staged_files.h"
#include "text/utf8.h"
#include "vtrfile/sections.h"

namespace trvtrout::host {
namespace {

using differences::Difference;
using differences::DifferenceCounts;
using differences::PathFilter;
using differences::Tell;

// Two documents, and which of their differences are asked for.
class Documents {
 public:
  Documents(Machine& machine, const PathFilter& filter)
      : filter_(filter), old_(machine.services()), new_(machine.services()) {}

  // kTrouble when one of them can't be compared, of which the user has been told; kRemarkable when one is only what
  // could be saved of its file.
  ExitStatus read(Machine& machine, const std::string& old_file, const std::string& new_file, bool salvage) {
    const ExitStatus status = read_one(machine, old_, old_file, salvage);
    return status == kTrouble ? status : std::max(status, read_one(machine, new_, new_file, salvage));
  }
  void of_header(const Tell& tell) const {
    differences::find_header_differences(old_.CurrentSlots(), new_.CurrentSlots(), tell);
  }
  void of_document(const Tell& tell) const {
    differences::find_differences(old_.CurrentSlots(), new_.CurrentSlots(), [&](const Difference& difference) {
      if (filter_.chooses(difference)) tell(difference);
    });
  }

 private:
  // git names this file where a side has none.
  static constexpr std::string_view kNoFile = "/dev/null";
  static ExitStatus read_one(Machine& machine, TarvelVtrOut_InOut& utility, const std::string& file, bool salvage) {
    return file == kNoFile ? kFine : read_to_compare(machine, utility, file, salvage);
  }

  const PathFilter& filter_;
  TarvelVtrOut_InOut old_, new_;
};

// What is compared, and what it's called.
struct FilePair {
  std::string old_file, new_file, old_name, new_name;
  bool for_git = false;
  bool has_heading = for_git;
  bool is_one_of_many = false;
};

// git gives: path, old file, its object and mode, new file, its object and mode; of a renamed file also the new path
// and a text about the renaming.
std::optional<FilePair> files_of(const std::vector<std::string>& arguments) {
  switch (arguments.size()) {
    case 1:  // of a file that isn't merged git has one name
      if (!std::getenv("GIT_DIFF_PATH_COUNTER")) return {};
      return FilePair{"", "", arguments[0], "", true};
    case 2:
      return FilePair{arguments[0], arguments[1], arguments[0], arguments[1]};
    case 7:
      return FilePair{arguments[1], arguments[4], "a/" + arguments[0], "b/" + arguments[0], true};
    case 8:
    case 9:
      return FilePair{arguments[1], arguments[4], "a/" + arguments[0], "b/" + arguments[7], true};
    default:
      return {};
  }
}

// The name of a file in a repository, which may hold anything.
std::string shown_name(const std::string& name) { return platform::printable_line(text::from_utf8(name)); }

bool colors_wanted(ColorWhen when) {
  if (when != ColorWhen::kAuto) return when == ColorWhen::kAlways;
  const char* const no_color = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) != 0 && !(no_color && *no_color) && terminal && std::string_view(terminal) != "dumb";
}

// What is asked for, one pattern each; none when all is.
std::vector<std::string> patterns_of(const DiffTask& task) {
  std::vector<std::string> only = task.only;
  for (const std::string& part : task.parts)
    std::ranges::copy(differences::patterns_of_part(part), std::back_inserter(only));
  return only;
}

void show_text(std::ostream& out, Locale& locale, const Painter& painter, const Documents& documents, bool all) {
  DifferencesText header(out, locale, painter, true);
  documents.of_header([&](const Difference& difference) { header.tell(difference); });
  header.finish();
  DifferencesText text(out, locale, painter, all);
  documents.of_document([&](const Difference& difference) { text.tell(difference); });
  text.finish();
}

// One row for each section that differs.
void show_summary(std::ostream& out, const Documents& documents) {
  constexpr int kTitleWidth = 28, kNumberWidth = 10;
  std::map<std::string_view, DifferenceCounts> of_section;
  documents.of_document([&](const Difference& difference) {
    of_section[differences::steps_to(difference.place).front()->name].add(difference);
  });
  if (of_section.empty()) return;
  out << std::left << std::setw(kTitleWidth) << "section" << std::right;
  for (const char* const kind : differences::kKindNames) out << std::setw(kNumberWidth) << kind;
  out << '\n';
  vtrfile::for_each_section([&](const auto& section) {
    const auto found = of_section.find(section.tag);
    if (found == of_section.end()) return;
    out << std::left << std::setw(kTitleWidth) << section.title << std::right;
    for (const std::size_t number : found->second.of_kind) out << std::setw(kNumberWidth) << number;
    out << '\n';
  });
}

struct Counted {
  DifferenceCounts of_document;
  std::size_t of_header = 0;
};

Counted count(const Documents& documents) {
  Counted counted;
  documents.of_document([&](const Difference& difference) { counted.of_document.add(difference); });
  documents.of_header([&](const Difference&) { ++counted.of_header; });
  return counted;
}

std::string counts_line(const Counted& counted) {
  const std::string header =
      counted.of_header == 0 ? "" : "; " + std::to_string(counted.of_header) + " in the header, which don't count";
  return (counted.of_document.all() == 0 ? "no differences" : counted.of_document.text()) + header;
}

PageInfo page_info(const DiffTask& task, const FilePair& files, const DifferenceCounts& counts) {
  PageInfo info{.compared = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()),
                .old_file = page_file(files.old_file),
                .new_file = page_file(files.new_file),
                .of_kind = counts.of_kind,
                .only = patterns_of(task),
                .ignored = task.ignore};
  info.old_file.name = files.old_name;
  info.new_file.name = files.new_name;
  return info;
}

// The page is put in its place when it's whole.
bool write_page(Machine& machine, const DiffTask& task, const FilePair& files, const DifferenceCounts& counts,
                const std::function<void(std::ostream&)>& write_json) {
  const HostServices services = machine.services();
  if (services.files.SameFile(platform::class_path(task.html), platform::class_path(files.new_file))) {
    complain(task.html + ": that's the new document, which is never overwritten; name another file" + kNothingWritten);
    return false;
  }
  const auto target = target_for(services, {files.old_file, "the old document", task.html, u"Differences"});
  if (!target) return false;
  platform::StagedFiles staged(services.files, files.old_file);
  OutputBuffer buffer(staged.OpenBinaryOutput(target->path));
  std::ostream out(&buffer);
  write_differences_page(out, page_info(task, files, counts), write_json);
  buffer.close();
  staged.commit(target->replaces);
  std::cout << platform::machine_path(target->path) << '\n';
  return true;
}

void show_for_people(std::ostream& out, Machine& machine, const DiffTask& task, const Documents& documents,
                     const FilePair& files, const Counted& counted) {
  const Painter painter(colors_wanted(task.color));
  if (files.has_heading) {
    out << painter.heading("vtrout diff " + shown_name(files.old_name) + ' ' + shown_name(files.new_name)) << '\n';
  }
  if (task.summary) {
    show_summary(out, documents);
  } else {
    show_text(out, machine.locale(), painter, documents, task.all);
  }
  out << counts_line(counted) << '\n';
}

// False when nothing could be shown, of which the user has been told.
bool show(const Settings& settings, const DiffTask& task, Machine& machine, const Documents& documents,
          const FilePair& files, const Counted& counted) {
  const auto of_header = [&](const Tell& tell) { documents.of_header(tell); };
  const auto of_document = [&](const Tell& tell) { documents.of_document(tell); };
  const exchange::DifferencesHead head{files.old_name, files.new_name, counted.of_document};
  const auto write_json = [&](std::ostream& out) {
    exchange::Texts texts = texts_of(settings.code_page);
    exchange::JsonWriter json(out);
    exchange::write_differences(json, texts, head, of_header, of_document);
  };
  if (!task.html.empty()) return write_page(machine, task, files, counted.of_document, write_json);
  if (task.json) {
    write_json(out());
  } else if (files.is_one_of_many) {
    const bool is_same = counted.of_document.all() == 0 && counted.of_header == 0;
    if (!is_same && !task.summary) show_for_people(out(), machine, task, documents, files, counted);
  } else {
    PagedOutput paged;
    show_for_people(paged.stream(), machine, task, documents, files, counted);
  }
  return true;
}

}  // namespace

ExitStatus diff(const Settings& settings, const DiffTask& task, PairCounts* counts) {
  std::optional<FilePair> files = files_of(task.arguments);
  if (!files) {
    complain("diff takes two files, OLD and NEW; see vtrout help diff");
    return kTrouble;
  }
  if (files->old_file.empty()) {
    std::cout << shown_name(files->old_name) << " isn't merged\n";
    return kFine;
  }
  const PathFilter filter(patterns_of(task), task.ignore);
  Machine machine(settings);
  Documents documents(machine, filter);
  const ExitStatus read = documents.read(machine, files->old_file, files->new_file, task.salvage);
  if (read == kTrouble) {
    if (!files->for_git) return kTrouble;
    // Anything else than 0 would end git's own work.
    std::cout << shown_name(files->old_name) << " and " << shown_name(files->new_name) << " can't be compared\n";
    return kFine;
  }
  const Counted counted = count(documents);
  files->is_one_of_many = counts != nullptr;
  files->has_heading = files->has_heading || counts;
  if (counts) std::ranges::copy(counted.of_document.of_kind, counts->begin());
  if (!show(settings, task, machine, documents, *files, counted)) return kTrouble;
  // Of what couldn't be saved nobody knows whether it's the same.
  return files->for_git || (counted.of_document.all() == 0 && read == kFine) ? kFine : kRemarkable;
}

}  // namespace trvtrout::host
