// What reading on behind damage costs on a large document with many damages, beside reading it whole.
#include "bench/measure.h"
#include "platform/files/path.h"
#include "tests/strikes.h"

namespace trvtrout::bench {
namespace {

constexpr int kRuns = 7;
constexpr int kDamages = 1000;

std::filesystem::path damaged_document(const std::filesystem::path& folder, tests::Strike how) {
  const std::filesystem::path whole = large_document(folder);
  std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(whole)), '\0');
  std::ifstream(whole, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  std::mt19937 random(20040601);
  tests::strike(bytes, how, kDamages, random);
  const std::filesystem::path damaged = folder / "damaged.vtr";
  std::ofstream(damaged, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return damaged;
}

Cost salvaging_cost(const std::filesystem::path& file) {
  return in_child([&] {
    Host host;
    std::u16string path = platform::class_path(file.string());
    return cost_of([&] {
      auto document = std::make_unique<TarvelVtrOut_InOut>(host.services());
      Boolean primary = False;
      if (!document->SalvageVTR(path, primary)) throw std::runtime_error(document->LastFailure());
      return document;
    });
  });
}

struct Results {
  Measured reading{"ReadVTR, whole"};
  std::vector<Measured> salvages = {};
};

void measure_salvage(const std::filesystem::path& folder, tests::Strike how, Results& results,
                     benchmark::State& state) {
  const std::filesystem::path whole = large_document(folder);
  const std::filesystem::path damaged = damaged_document(folder, how);
  Measured salvage{std::string("SalvageVTR, ") + tests::kStrikeNames[static_cast<std::size_t>(how)]};
  results.reading.bytes = file_bytes(whole);
  salvage.bytes = file_bytes(damaged);
  for (auto _ : state) {
    results.reading.runs.push_back(reading_cost(whole));
    salvage.add(state, salvaging_cost(damaged));
  }
  salvage.tell(state);
  state.counters["time_ratio"] = salvage.seconds() / results.reading.seconds();
  results.salvages.push_back(salvage);
}

void print(const Results& results) {
  if (results.salvages.empty()) return;
  std::vector<Measured> rows = results.salvages;
  rows.insert(rows.begin(), results.reading);
  print_table("reading on behind 1000 damages, medians", rows);
  for (const Measured& salvage : results.salvages) {
    std::cout << salvage.name << " / ReadVTR of the whole file: " << salvage.seconds() / results.reading.seconds()
              << " (wanted: at most 10)\n";
  }
}

}  // namespace

Print add_salvaging(const std::filesystem::path& folder) {
  const auto results = std::make_shared<Results>();
  for (const tests::Strike how : tests::kStrikes) {
    if (how == tests::Strike::kCut) continue;
    std::string name = std::string("salvage/") + tests::kStrikeNames[static_cast<std::size_t>(how)];
    std::ranges::replace(name, ' ', '_');
    add_benchmark(name, kRuns, [=](benchmark::State& state) { measure_salvage(folder, how, *results, state); });
  }
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
