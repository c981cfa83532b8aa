// What reading and reporting cost on a large document, beside the least that reading the same bytes could cost.
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

#include "bench/measure.h"
#include "component/parts.h"
#include "platform/files/path.h"
#include "vtrfile/reader.h"

namespace trvtrout::bench {
namespace {

constexpr int kReadRuns = 15;
constexpr int kReportRuns = 5;

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
using Buffer = std::unique_ptr<void, Free>;

// The least that anybody does who reads a file and makes something of it: the bytes once from the system, once copied.
std::pair<Buffer, Buffer> read_and_copy(const std::filesystem::path& file) {
  const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  if (descriptor < 0 || fstat(descriptor, &status) != 0) throw std::runtime_error("can't open the file");
  const auto size = static_cast<std::size_t>(status.st_size);
  Buffer bytes(std::malloc(size));
  Buffer copy(std::malloc(size));
  for (std::size_t filled = 0; filled < size;) {
    const ssize_t count = read(descriptor, static_cast<char*>(bytes.get()) + filled, size - filled);
    if (count <= 0) throw std::runtime_error("can't read the file");
    filled += static_cast<std::size_t>(count);
  }
  close(descriptor);
  std::memcpy(copy.get(), bytes.get(), size);
  benchmark::DoNotOptimize(copy.get());
  benchmark::ClobberMemory();
  return {std::move(bytes), std::move(copy)};
}

Cost copying_cost(const std::filesystem::path& file) {
  return in_child([&] { return cost_of([&] { return read_and_copy(file); }); });
}

struct ParsedDocument {
  vtrfile::DocumentSlots current;
  vtrfile::GroupSlots group;
  vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> schema_old;
};

Cost parsing_cost(const std::filesystem::path& file) {
  return in_child([&] {
    auto image = std::make_shared<vtrfile::Image>(std::filesystem::file_size(file));
    const auto bytes = image->writable();
    std::ifstream(file, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return cost_of([&] {
      auto document = std::make_unique<ParsedDocument>();
      vtrfile::DocumentReader(document->current, document->group, document->schema_old).read(image);
      return document;
    });
  });
}

Cost report_cost(const std::filesystem::path& file, const Part& part) {
  return in_child([&] {
    Host host;
    TarvelVtrOut_InOut document(host.services());
    read_into(document, file);
    std::u16string path = platform::class_path(file.string());
    return cost_of([&] {
      std::u16string report_path;
      Boolean is_temp = True;
      if (!(document.*part.report)(path, report_path, is_temp)) throw std::runtime_error(document.LastFailure());
      return report_path;
    });
  });
}

struct Results {
  double time_ratio() const { return reading.seconds() / copying.seconds(); }
  double memory_ratio() const { return reading.peak() / reading.bytes; }

  Measured copying{"read and copied once"};
  Measured reading{"ReadVTR"};
  Measured parsing{"parse"};
  std::vector<Measured> reports = {};
};

void measure_reading(const std::filesystem::path& folder, Results& results, benchmark::State& state) {
  const std::filesystem::path file = large_document(folder);
  results.copying.bytes = results.reading.bytes = file_bytes(file);
  for (auto _ : state) {
    results.copying.runs.push_back(copying_cost(file));
    results.reading.add(state, reading_cost(file));
  }
  results.reading.tell(state);
  state.counters["copy_ms"] = results.copying.seconds() * 1e3;
  state.counters["time_ratio"] = results.time_ratio();
  state.counters["memory_ratio"] = results.memory_ratio();
}

void measure_parsing(const std::filesystem::path& folder, Results& results, benchmark::State& state) {
  const std::filesystem::path file = large_document(folder);
  results.parsing.bytes = file_bytes(file);
  for (auto _ : state) results.parsing.add(state, parsing_cost(file));
  results.parsing.tell(state);
}

Measured measure_report(const std::filesystem::path& folder, const Part& part, benchmark::State& state) {
  const std::filesystem::path file = large_document(folder);
  Measured report{std::string("report ") + part.name};
  for (auto _ : state) report.add(state, report_cost(file, part));
  report.bytes = file_bytes(temporary_report(file, part.detail_report->desc_name));
  report.tell(state);
  return report;
}

std::string huge_pages() {
  std::ifstream setting("/sys/kernel/mm/transparent_hugepage/enabled");
  std::string line;
  return std::getline(setting, line) ? line : "unknown";
}

void print(const Results& results) {
  std::vector<Measured> rows = results.reports;
  rows.insert(rows.begin(), {results.copying, results.reading, results.parsing});
  print_table("reading, medians", rows);
  if (results.reading.runs.empty()) return;
  std::cout << "\ntime of ReadVTR / read and copied once: " << results.time_ratio()
            << " (wanted: at most 2.5)\npeak memory of ReadVTR / size of the file: " << results.memory_ratio()
            << " (wanted: at most 4)\nhuge pages, which spare the copy more than the reading: " << huge_pages() << '\n';
}

}  // namespace

Print add_reading(const std::filesystem::path& folder) {
  const auto results = std::make_shared<Results>();
  add_benchmark("ReadVTR", kReadRuns, [=](benchmark::State& state) { measure_reading(folder, *results, state); });
  add_benchmark("parse", kReadRuns, [=](benchmark::State& state) { measure_parsing(folder, *results, state); });
  for (const Part& part : document_parts()) {
    add_benchmark(std::string("report/") + part.name, kReportRuns,
                  [=](benchmark::State& state) { results->reports.push_back(measure_report(folder, part, state)); });
  }
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
