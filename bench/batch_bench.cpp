// Many small files in one run of the command, beside the same calls of the class in one process without it, and beside
// a process for each file.
#include <iomanip>

#include "bench/measure.h"
#include "component/parts.h"
#include "platform/files/path.h"
#include "vtrfile/lists.h"

namespace trvtrout::bench {
namespace {

constexpr int kFiles = 10'000, kFewer = 1'000, kRuns = 3;

// The work on one file.
using Work = void (*)(TarvelVtrOut_InOut& document, const std::filesystem::path& file);

void recount(TarvelVtrOut_InOut& document, const std::filesystem::path& file) {
  read_into(document, file);
  for (const auto& list : vtrfile::document_lists()) benchmark::DoNotOptimize(list.recount(document.CurrentSlots()));
}

void report(TarvelVtrOut_InOut& document, const std::filesystem::path& file) {
  read_into(document, file);
  std::u16string path = platform::class_path(file.string()), written;
  Boolean is_temp = True;
  for (const Part& part : document_parts()) {
    if (!(document.*part.report)(path, written, is_temp)) throw std::runtime_error(document.LastFailure());
  }
}

struct Verb {
  const char* name;
  Work work;
  std::vector<std::string> options;
  Measured work_itself{"the work itself"};
  Measured run{"one run"}, run_alone{"one run, --jobs 1"}, fewer{"one run, a tenth of them"};
  Measured processes{"a process each, a tenth of them"};
};

std::filesystem::path folder_of_files(const std::filesystem::path& folder, int files) {
  const std::filesystem::path filled = folder / ("files-" + std::to_string(files));
  if (!std::filesystem::create_directory(filled)) return filled;
  for (int file = 0; file < files; ++file) {
    std::filesystem::copy_file(SAMPLES "/plant.vtr", filled / (std::to_string(file) + ".vtr"));
  }
  return filled;
}

// What an earlier run has written, so that each finds its names free.
void remove_reports(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> reports;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == ".CSV") reports.push_back(entry.path());
  }
  for (const auto& report : reports) std::filesystem::remove(report);
}

Cost work_cost(const std::filesystem::path& folder, Work work) {
  remove_reports(folder);
  return in_child([&] {
    Host host;
    return cost_of([&] {
      for (int file = 0; file < kFiles; ++file) {
        TarvelVtrOut_InOut document(host.services());
        work(document, folder / (std::to_string(file) + ".vtr"));
      }
      return 0;
    });
  });
}

Words words_of(const Verb& verb, const std::string& operand, const Words& options) {
  Words words = {VTROUT, verb.name, operand, "--quiet"};
  words.insert(words.end(), verb.options.begin(), verb.options.end());
  words.insert(words.end(), options.begin(), options.end());
  return words;
}

Cost run_cost(const Verb& verb, const std::filesystem::path& folder, const Words& options = {}) {
  remove_reports(folder);
  return command_cost(words_of(verb, folder, options));
}

Cost processes_cost(const Verb& verb, const std::filesystem::path& folder) {
  remove_reports(folder);
  Cost all{};
  for (int file = 0; file < kFewer; ++file) {
    const Cost one = command_cost(words_of(verb, folder / (std::to_string(file) + ".vtr"), {}));
    all.seconds += one.seconds;
    all.processor_seconds += one.processor_seconds;
    all.peak_bytes = std::max(all.peak_bytes, one.peak_bytes);
  }
  return all;
}

void measure(const std::filesystem::path& folder, Verb& verb, benchmark::State& state) {
  const std::filesystem::path files = folder_of_files(folder, kFiles), fewer = folder_of_files(folder, kFewer);
  for (auto _ : state) {
    verb.work_itself.runs.push_back(work_cost(files, verb.work));
    verb.run.add(state, run_cost(verb, files));
    verb.run_alone.runs.push_back(run_cost(verb, files, {"--jobs", "1"}));
    verb.fewer.runs.push_back(run_cost(verb, fewer));
    verb.processes.runs.push_back(processes_cost(verb, fewer));
  }
  verb.run.tell(state);
}

void print(const Verb& verb) {
  if (verb.run.runs.empty()) return;
  const auto row = [&](const Measured& measured, int files) {
    const double share = static_cast<double>(kFiles) / files;
    std::cout << std::left << std::setw(34) << measured.name << std::right << std::setw(12)
              << measured.processor_seconds() * 1e6 / files << std::setw(10)
              << measured.processor_seconds() * share / verb.work_itself.processor_seconds() << std::setw(12)
              << measured.seconds() * 1e6 / files << std::setw(10)
              << measured.seconds() * share / verb.work_itself.seconds() << std::setw(12)
              << measured.peak() / (1024 * 1024) << '\n';
  };
  std::cout << std::fixed << std::setprecision(2) << "\nvtrout " << verb.name << ", " << kFiles
            << " files of 16 KB; for each, and ratios to the work itself (wanted of one run: at most 3)\n"
            << std::setw(46) << "processor us" << std::setw(10) << "ratio" << std::setw(12) << "elapsed us"
            << std::setw(10) << "ratio" << std::setw(12) << "peak MiB" << '\n';
  row(verb.work_itself, kFiles);
  row(verb.run, kFiles);
  row(verb.run_alone, kFiles);
  row(verb.fewer, kFewer);
  row(verb.processes, kFewer);
}

}  // namespace

Print add_batch(const std::filesystem::path& folder) {
  const auto verbs = std::make_shared<std::vector<Verb>>();
  verbs->push_back({"info", recount, {}});
  verbs->push_back({"report", report, {"--temporary"}});
  for (std::size_t at = 0; at < verbs->size(); ++at) {
    add_benchmark(std::string("batch_") + (*verbs)[at].name, kRuns,
                  [=](benchmark::State& state) { measure(folder, (*verbs)[at], state); });
  }
  return [=] {
    for (const Verb& verb : *verbs) print(verb);
  };
}

}  // namespace trvtrout::bench
