// What comparing two large documents costs, file by file as a user meets it.
#include <span>

#include "bench/compared_files.h"

namespace trvtrout::bench {
namespace {

constexpr int kRuns = 5;
constexpr int kEveryNthChanged = 100;

ComparedFiles large_documents(const std::filesystem::path& folder) {
  return {large_document(folder), large_document(folder, kEveryNthChanged)};
}

// Of the whole way from the files to the reports, or with no `parts` to the records.
Cost cost_from_files(const ComparedFiles& files, std::span<const Part> parts) {
  return in_child([&] {
    Host host;
    return cost_of([&] {
      auto documents = std::make_unique<TarvelVtrOut_InOut>(host.services());
      files.read_into(*documents);
      for (const Part& part : parts) files.compare(*documents, part.compare);
      return documents;
    });
  });
}

struct Results {
  Measured reading{"both read"};
  std::vector<Measured> comparisons = {};
  Measured whole{"both read, all compared"};
};

void measure_from_files(const ComparedFiles& files, std::span<const Part> parts, Measured& measured,
                        benchmark::State& state) {
  measured.bytes = files.bytes();
  for (auto _ : state) measured.add(state, cost_from_files(files, parts));
  measured.tell(state);
}

Measured measure_comparison(const ComparedFiles& files, const Part& part, benchmark::State& state) {
  Measured comparison{std::string("compare ") + part.name};
  for (auto _ : state) {
    comparison.add(state, in_child([&] {
                     Host host;
                     TarvelVtrOut_InOut documents(host.services());
                     files.read_into(documents);
                     return cost_of([&] { return files.compare(documents, part.compare); });
                   }));
  }
  comparison.bytes =
      file_bytes(files.primary.parent_path() / temporary_report(files.primary, part.comparison->desc_name));
  comparison.tell(state);
  return comparison;
}

void print(const Results& results) {
  std::vector<Measured> rows = results.comparisons;
  rows.insert(rows.begin(), results.reading);
  rows.push_back(results.whole);
  print_table("comparing, medians", rows);
  if (results.whole.runs.empty()) return;
  std::cout << "\npeak memory of reading and comparing both / size of both files: "
            << results.whole.peak() / results.whole.bytes << '\n';
}

}  // namespace

Print add_comparing(const std::filesystem::path& folder) {
  const auto results = std::make_shared<Results>();
  add_benchmark("compare/reading", kRuns, [=](benchmark::State& state) {
    measure_from_files(large_documents(folder), {}, results->reading, state);
  });
  for (const Part& part : document_parts()) {
    add_benchmark(std::string("compare/") + part.name, kRuns, [=](benchmark::State& state) {
      results->comparisons.push_back(measure_comparison(large_documents(folder), part, state));
    });
  }
  add_benchmark("compare/whole", kRuns, [=](benchmark::State& state) {
    measure_from_files(large_documents(folder), document_parts(), results->whole, state);
  });
  return [=] { print(*results); };
}

}  // namespace trvtrout::bench
