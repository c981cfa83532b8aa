// How the time of a comparison grows with the number of records, and what their order makes of it.
#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "bench/compared_files.h"

namespace trvtrout::bench {
namespace {

constexpr int kRuns = 15;
constexpr int kSizes[] = {8'000, 16'000, 32'000};
constexpr double kMostGrowth = 2.5;
constexpr double kMostForOrder = 3;
constexpr const char* kHeads =
    "\nmatching, medians of processor time in ms; what twice the records and what the order makes of it\n"
    "                            8,000   16,000   32,000     16:8    32:16    8,000   16,000   32,000\n";

// Comparisons whose records find their partners in different ways, or weigh differently.
constexpr struct Matching {
  const char* name;
  CompareCall compare;
  DocumentSize rest;  // all but the list
  int DocumentSize::*records;
} kMatchings[] = {
    {"Lookup", &TarvelVtrOut_InOut::Compare_Lookup, {}, &DocumentSize::lookups},
    {"Table", &TarvelVtrOut_InOut::Compare_Table, {}, &DocumentSize::tables},
    {"Lang", &TarvelVtrOut_InOut::Compare_Lang, {}, &DocumentSize::language_texts},
    {"Product", &TarvelVtrOut_InOut::Compare_Product, {}, &DocumentSize::modules},
    {"Tree", &TarvelVtrOut_InOut::Compare_Tree, {}, &DocumentSize::tree_nodes},
    {"Field", &TarvelVtrOut_InOut::Compare_Field, {.tables = 1}, &DocumentSize::fields_per_table},
    {"DSend", &TarvelVtrOut_InOut::Compare_DSend, {.definitions = 1}, &DocumentSize::nodes_per_definition}};

// How the records of the secondary document stand to those of the primary one.
constexpr struct Arrangement {
  const char* name;
  Order order;
  bool one_key;
} kArrangements[] = {{"same", Order::kAsMade, false},
                     {"reversed", Order::kReversed, false},
                     {"shuffled", Order::kShuffled, false},
                     {"one key", Order::kAsMade, true}};

// The runs of one comparison by arrangement and size.
using BySize = std::array<Measured, std::size(kSizes)>;
using Runs = std::array<BySize, std::size(kArrangements)>;
using Results = std::array<Runs, std::size(kMatchings)>;

ComparedFiles write_documents(const std::filesystem::path& folder, const Matching& matching,
                              const Arrangement& arrangement, int records) {
  DocumentSize size = matching.rest;
  size.*matching.records = records;
  size.one_key = arrangement.one_key;
  const std::string name = std::string(arrangement.name) + std::to_string(records);
  ComparedFiles files{folder / (name + "-primary.vtr"), folder / (name + "-secondary.vtr")};
  write_document(files.primary, size);
  size.order = arrangement.order;
  write_document(files.secondary, size);
  return files;
}

// The report goes nowhere, so that the disk doesn't count.
Cost comparing_cost(const ComparedFiles& files, CompareCall compare, int records) {
  return in_child([&] {
    Host host(Reports::kDiscarded);
    TarvelVtrOut_InOut documents(host.services());
    files.read_into(documents);
    return cost_of([&] {
      const ComparisonCounts counts = files.compare(documents, compare);
      const std::size_t walked = counts.unchanged + counts.changed + counts.deleted;
      if (walked < static_cast<std::size_t>(records)) throw std::runtime_error("not all records were compared");
      return counts;
    });
  });
}

// "-" for what a filter left out.
std::string figure(double number) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << number;
  return std::isnan(number) ? "-" : text.str();
}

// What each size costs, what twice the records make of it, and what the order does.
struct Line {
  const BySize& runs;
  const BySize& same;

  double milliseconds(std::size_t size) const { return runs[size].processor_seconds() * 1e3; }
  double growth(std::size_t size) const { return milliseconds(size) / milliseconds(size - 1); }
  double for_order(std::size_t size) const { return runs[size].processor_seconds() / same[size].processor_seconds(); }
  bool is_measured() const {
    return std::ranges::any_of(runs, [](const Measured& measured) { return !measured.runs.empty(); });
  }
  void print(const std::string& name) const {
    std::cout << std::left << std::setw(24) << name << std::right;
    for (std::size_t size = 0; size < runs.size(); ++size) std::cout << std::setw(9) << figure(milliseconds(size));
    for (std::size_t size = 1; size < runs.size(); ++size) std::cout << std::setw(9) << figure(growth(size));
    for (std::size_t size = 0; size < runs.size(); ++size) std::cout << std::setw(9) << figure(for_order(size));
    std::cout << '\n';
  }
};

void print(const Results& results) {
  bool has_lines = false;
  for (std::size_t matching = 0; matching < results.size(); ++matching) {
    for (std::size_t arrangement = 0; arrangement < std::size(kArrangements); ++arrangement) {
      const Line line{results[matching][arrangement], results[matching][0]};
      if (!line.is_measured()) continue;
      if (!has_lines) std::cout << kHeads;
      has_lines = true;
      line.print(std::string(kMatchings[matching].name) + ", " + kArrangements[arrangement].name);
    }
  }
  if (!has_lines) return;
  std::cout << "(wanted: at most " << kMostGrowth << " for twice the records, at most " << kMostForOrder
            << " times the time in the same order)\n";
}

struct Case {
  ComparedFiles files;
  int records;
  Measured* measured;
};

// Every case in each round, so that what else the machine does meanwhile falls on all of them.
void measure_matching(const std::filesystem::path& folder, const Matching& matching, Runs& runs,
                      benchmark::State& state) {
  std::vector<Case> cases;
  for (std::size_t arrangement = 0; arrangement < runs.size(); ++arrangement) {
    for (std::size_t size = 0; size < std::size(kSizes); ++size) {
      cases.push_back({write_documents(folder, matching, kArrangements[arrangement], kSizes[size]), kSizes[size],
                       &runs[arrangement][size]});
    }
  }
  for (auto _ : state) {
    double seconds = 0;
    for (const Case& one : cases) {
      one.measured->runs.push_back(comparing_cost(one.files, matching.compare, one.records));
      seconds += one.measured->runs.back().seconds;
    }
    state.SetIterationTime(seconds);
  }
}

}  // namespace

Print add_matching(const std::filesystem::path& folder) {
  const auto results = std::make_shared<Results>();
  for (std::size_t matching = 0; matching < results->size(); ++matching) {
    add_benchmark(std::string("match/") + kMatchings[matching].name, kRuns, [=](benchmark::State& state) {
      measure_matching(folder, kMatchings[matching], (*results)[matching], state);
    });
  }
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
