#include "bench/measure.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <limits>

#include "platform/files/path.h"
#include "text/utf8.h"

namespace trvtrout::bench {

double status_bytes(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kibibytes = 0;
    if (word == name && status >> kibibytes) return kibibytes * 1024;
  }
  throw std::runtime_error("the system tells no " + name);
}

double processor_seconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void Measured::tell(benchmark::State& state) const {
  state.counters["median_ms"] = seconds() * 1e3;
  state.counters["processor_ms"] = processor_seconds() * 1e3;
  if (bytes > 0) state.counters["MB/s"] = bytes / kMegabyte / seconds();
  state.counters["peak_MB"] = peak() / kMegabyte;
}

double Measured::median(double Cost::*figure) const {
  if (runs.empty()) return std::numeric_limits<double>::quiet_NaN();
  std::vector<double> figures;
  for (const Cost& run : runs) figures.push_back(run.*figure);
  const auto middle = figures.begin() + static_cast<std::ptrdiff_t>(figures.size() / 2);
  std::ranges::nth_element(figures, middle);
  return *middle;
}

void print_table(const std::string& title, const std::vector<Measured>& operations) {
  bool has_heads = false;
  for (const Measured& operation : operations) {
    if (operation.runs.empty()) continue;
    if (!has_heads) {
      std::cout << std::fixed << std::setprecision(2) << '\n'
                << std::left << std::setw(26) << title << std::right << std::setw(10) << "ms" << std::setw(10) << "MB"
                << std::setw(10) << "MB/s" << std::setw(10) << "peak MB" << '\n';
    }
    has_heads = true;
    std::cout << std::left << std::setw(26) << operation.name << std::right << std::setw(10)
              << operation.seconds() * 1e3 << std::setw(10) << operation.bytes / kMegabyte << std::setw(10)
              << operation.bytes / kMegabyte / operation.seconds() << std::setw(10) << operation.peak() / kMegabyte
              << '\n';
  }
}

void read_into(TarvelVtrOut_InOut& document, const std::filesystem::path& file, Boolean is_secondary) {
  std::u16string path = platform::class_path(file.string());
  std::u16string structures;
  if (!document.ReadVTR(path, structures, is_secondary)) throw std::runtime_error(document.LastFailure());
}

void write_document(const std::filesystem::path& file, const DocumentSize& size) {
  in_child([&] {
    std::ofstream out(file, std::ios::binary);
    out << generate_document(size);
    out.close();
    if (!out) throw std::runtime_error("can't write " + file.string());
    return Cost{};
  });
}

std::filesystem::path large_document(const std::filesystem::path& folder, int every_nth_changed) {
  std::filesystem::path file = folder / (every_nth_changed > 0 ? "changed.vtr" : "large.vtr");
  DocumentSize size = fifty_megabytes();
  size.every_nth_changed = every_nth_changed;
  if (!std::filesystem::exists(file)) write_document(file, size);
  return file;
}

double file_bytes(const std::filesystem::path& file) { return static_cast<double>(std::filesystem::file_size(file)); }

std::filesystem::path temporary_report(const std::filesystem::path& file, std::u16string_view desc_name) {
  return file.parent_path() / ("~tmp" + file.stem().string() + "_" + text::to_utf8(desc_name) + ".CSV");
}

}  // namespace trvtrout::bench
