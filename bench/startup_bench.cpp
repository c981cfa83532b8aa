#include <algorithm>
#include <iomanip>

#include "bench/measure.h"

// What a command costs before and beside its work: the whole life of a process, next to one that does nothing.
namespace trvtrout::bench {
namespace {

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
      for (std::size_t at = 0; at < commands.size(); ++at) (*results)[at].add(state, command_cost(commands[at]));
    }
  });
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
