#pragma once

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "bench/generate_document.h"
#include "component/TarvelVtrOut_InOut.h"
#include "platform/console/console_message_box.h"
#include "platform/console/console_save_dialog.h"
#include "platform/console/quiet_message_loop.h"
#include "platform/files/discarding_files.h"
#include "platform/files/local_files.h"
#include "platform/locale/us_locale.h"
#include "platform/program/spreadsheet_program.h"

// How the benchmarks measure. Each measured run has a process of its own: in one process a later run gets the memory
// that an earlier one gave back, with its pages in place, which no user's first call does; and a peak of memory can't
// be told from an earlier one.
namespace trvtrout::bench {

constexpr double kMegabyte = 1e6;

// What one run took: its time by the clock and that of the processor, which other programs on the machine make less
// uncertain; and the most memory that it had at once beyond what was there before it.
struct Cost {
  double seconds;
  double processor_seconds;
  double peak_bytes;
};

// Of this process.
double processor_seconds();

// A line of /proc/self/status.
double status_bytes(const std::string& name);

// What `run` returns is kept until the clock has stopped, so that no time goes into freeing it.
template <class Run>
Cost cost_of(Run run) {
  std::ofstream("/proc/self/clear_refs") << "5";  // lets VmHWM begin anew
  const double before = status_bytes("VmRSS:");
  const double processor_start = processor_seconds();
  const auto start = std::chrono::steady_clock::now();
  [[maybe_unused]] const auto kept = run();
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {time.count(), processor_seconds() - processor_start, status_bytes("VmHWM:") - before};
}

template <class Measure>
[[noreturn]] void measure_in_child(Measure measure, int answer) {
  int status = EXIT_FAILURE;
  try {
    const Cost cost = measure();
    if (write(answer, &cost, sizeof cost) == sizeof cost) status = EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  _exit(status);
}

template <class Measure>
Cost in_child(Measure measure) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("can't make a pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("can't start a process");
  if (child == 0) measure_in_child(measure, ends[1]);
  close(ends[1]);
  Cost cost{};
  const bool answered = read(ends[0], &cost, sizeof cost) == sizeof cost;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  if (!answered) throw std::runtime_error("a measured run failed");
  return cost;
}

// The runs of one operation, and how many bytes each of them reads or writes.
struct Measured {
  std::string name;
  double bytes = 0;
  std::vector<Cost> runs = {};

  double seconds() const { return median(&Cost::seconds); }
  double processor_seconds() const { return median(&Cost::processor_seconds); }
  double peak() const { return median(&Cost::peak_bytes); }
  void add(benchmark::State& state, Cost cost) {
    runs.push_back(cost);
    state.SetIterationTime(cost.seconds);
  }
  void tell(benchmark::State& state) const;

 private:
  double median(double Cost::*figure) const;
};

// One table of the summary; what a filter left out isn't in it.
void print_table(const std::string& title, const std::vector<Measured>& operations);

template <class Function>
void add_benchmark(const std::string& name, int runs, Function function) {
  benchmark::RegisterBenchmark(name.c_str(), function)
      ->Iterations(runs)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

enum class Reports { kWritten, kDiscarded };

// The machine's services, with nobody at the terminal.
class Host {
 public:
  explicit Host(Reports reports = Reports::kWritten) : reports_(reports) {}
  HostServices services() {
    Files& files = reports_ == Reports::kWritten ? static_cast<Files&>(local_files_) : discarding_files_;
    return {files, message_box_, save_dialog_, message_loop_, locale_, spreadsheet_};
  }

 private:
  Reports reports_;
  platform::LocalFiles local_files_;
  platform::DiscardingFiles discarding_files_{local_files_};
  platform::ConsoleMessageBox message_box_{platform::Overwrite::kYes, std::cin, std::cerr, false};
  platform::ConsoleSaveDialog save_dialog_{local_files_, std::cin, std::cerr, false};
  platform::QuietMessageLoop message_loop_;
  platform::UsLocale locale_;
  platform::SpreadsheetProgram spreadsheet_{local_files_, locale_};
};

// The whole life of a process that runs this command, with its output thrown away. Its peak is all the memory that it
// had.
using Words = std::vector<std::string>;
Cost command_cost(const Words& words, int expected_status = 0);

void read_into(TarvelVtrOut_InOut& document, const std::filesystem::path& file, Boolean is_secondary = False);

// Of ReadVTR on an object of its own.
Cost reading_cost(const std::filesystem::path& file);

// In a child too: what making the document takes would stay with this process, and be copied to each of the others.
void write_document(const std::filesystem::path& file, const DocumentSize& size);

// The document of about 50 MB, and the same with every nth description changed; written when first asked for, so
// that a filter spares what it leaves out.
std::filesystem::path large_document(const std::filesystem::path& folder, int every_nth_changed = 0);

double file_bytes(const std::filesystem::path& file);
// Where an operation writes the report on `file` that is called `desc_name`.
std::filesystem::path temporary_report(const std::filesystem::path& file, std::u16string_view desc_name);

// Each registers the benchmarks of one part, which work in `folder`, and returns what prints its summary after they
// have run.
using Print = std::function<void()>;
Print add_reading(const std::filesystem::path& folder);
Print add_matching(const std::filesystem::path& folder);
Print add_comparing(const std::filesystem::path& folder);
Print add_differences(const std::filesystem::path& folder);
Print add_workbooks(const std::filesystem::path& folder);
Print add_exchange(const std::filesystem::path& folder);
Print add_salvaging(const std::filesystem::path& folder);
Print add_batch(const std::filesystem::path& folder);
Print add_startup();

}  // namespace trvtrout::bench
