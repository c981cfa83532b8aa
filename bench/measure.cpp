#include "bench/measure.h"

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <iomanip>
#include <limits>
#include <spawn.h>
#include <sys/resource.h>

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

namespace {

double seconds_of(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

Cost command_cost(const Words& words, int expected_status) {
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  const auto start = std::chrono::steady_clock::now();
  pid_t child = 0;
  const int error = posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  rusage usage{};
  if (error != 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
      WEXITSTATUS(status) != expected_status) {
    throw std::runtime_error("can't run " + words[0]);
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {time.count(), seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime),
          static_cast<double>(usage.ru_maxrss) * 1024};
}

void read_into(TarvelVtrOut_InOut& document, const std::filesystem::path& file, Boolean is_secondary) {
  std::u16string path = platform::class_path(file.string());
  std::u16string structures;
  if (!document.ReadVTR(path, structures, is_secondary)) throw std::runtime_error(document.LastFailure());
}

Cost reading_cost(const std::filesystem::path& file) {
  return in_child([&] {
    Host host;
    return cost_of([&] {
      auto document = std::make_unique<TarvelVtrOut_InOut>(host.services());
      read_into(*document, file);
      return document;
    });
  });
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
