#include <algorithm>
#include <fcntl.h>
#include <iomanip>
#include <spawn.h>
#include <sys/resource.h>

#include "bench/measure.h"

// What a command costs before and beside its work: the whole life of a process, next to one that does nothing.
namespace trvtrout::bench {
namespace {

using Words = std::vector<std::string>;

double seconds_of(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

// Runs a command with its output thrown away; the peak isn't measured.
Cost run_once(const Words& words) {
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
  if (error != 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
    throw std::runtime_error("can't run " + words[0]);
  }
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  return {time.count(), seconds_of(usage.ru_utime) + seconds_of(usage.ru_stime), 0};
}

void print(const std::vector<Measured>& commands) {
  const Measured& nothing = commands.front();
  if (nothing.runs.empty()) return;
  std::cout << std::fixed << std::setprecision(2) << '\n'
            << std::left << std::setw(26) << "Starting" << std::right << std::setw(16) << "processor ms"
            << std::setw(10) << "ratio" << std::setw(16) << "elapsed ms" << std::setw(10) << "ratio" << '\n';
  for (const Measured& command : commands) {
    std::cout << std::left << std::setw(26) << command.name << std::right << std::setw(16)
              << command.processor_seconds() * 1e3 << std::setw(10)
              << command.processor_seconds() / nothing.processor_seconds() << std::setw(16) << command.seconds() * 1e3
              << std::setw(10) << command.seconds() / nothing.seconds() << '\n';
  }
}

}  // namespace

Print add_startup() {
  constexpr int kRuns = 500;
  const std::array<Words, 3> commands{{{"/bin/true"}, {VTROUT, "--version"}, {VTROUT, "info", SAMPLES "/plant.vtr"}}};
  const auto results = std::make_shared<std::vector<Measured>>(
      std::vector<Measured>{{"/bin/true"}, {"vtrout --version"}, {"vtrout info plant.vtr"}});
  add_benchmark("startup", kRuns, [=](benchmark::State& state) {
    // They take turns, so that what else the machine does meets all of them alike.
    for (auto _ : state) {
      for (std::size_t at = 0; at < commands.size(); ++at) (*results)[at].add(state, run_once(commands[at]));
    }
  });
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
