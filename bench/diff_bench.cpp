// What telling every difference of two large documents costs beside reading them.
#include "bench/compared_files.h"
#include "differences/differences.h"

namespace trvtrout::bench {
namespace {

constexpr int kRuns = 7;
constexpr int kEveryNthChanged = 100;

// A document of the same size with other keys and other words.
std::filesystem::path another_document(const std::filesystem::path& folder) {
  std::filesystem::path file = folder / "another.vtr";
  DocumentSize size = fifty_megabytes();
  size.seed = 2;
  size.first_number = 40'001;
  if (!std::filesystem::exists(file)) write_document(file, size);
  return file;
}

struct Documents {
  TarvelVtrOut_InOut old_document, new_document;
  std::size_t differences = 0;

  Documents(Host& host, const ComparedFiles& files) : old_document(host.services()), new_document(host.services()) {
    read_into(old_document, files.primary);
    read_into(new_document, files.secondary);
  }
  void find() {
    differences::find_differences(old_document.CurrentSlots(), new_document.CurrentSlots(),
                                  [this](const differences::Difference&) { ++differences; });
  }
};

Cost cost_of_documents(const ComparedFiles& files, bool find) {
  return in_child([&] {
    Host host;
    return cost_of([&] {
      auto documents = std::make_unique<Documents>(host, files);
      if (find) documents->find();
      return documents;
    });
  });
}

// A pair of documents: read, and read with their differences found, by turns.
struct Pair {
  std::string name;
  double most_time;  // wanted, as a multiple of reading both
  ComparedFiles (*files)(const std::filesystem::path& folder);
  Measured reading{"both read"};
  Measured finding{"both read, differences found"};

  double time_ratio() const { return finding.seconds() / reading.seconds(); }
  double memory_ratio() const { return finding.peak() / reading.peak(); }
};

void measure(const std::filesystem::path& folder, Pair& pair, benchmark::State& state) {
  const ComparedFiles files = pair.files(folder);
  pair.reading.bytes = pair.finding.bytes = files.bytes();
  for (auto _ : state) {
    pair.reading.runs.push_back(cost_of_documents(files, false));
    pair.finding.add(state, cost_of_documents(files, true));
  }
  pair.finding.tell(state);
  state.counters["time_ratio"] = pair.time_ratio();
  state.counters["memory_ratio"] = pair.memory_ratio();
}

void print(const Pair& pair) {
  if (pair.finding.runs.empty()) return;
  print_table(pair.name + ", medians", {pair.reading, pair.finding});
  std::cout << "\ntime of reading both and finding the differences / of reading both: " << pair.time_ratio()
            << " (wanted: at most " << pair.most_time << ")\npeak memory of the same: " << pair.memory_ratio()
            << " (wanted: at most 1.5)\n";
}

}  // namespace

Print add_differences(const std::filesystem::path& folder) {
  const auto pairs = std::make_shared<std::vector<Pair>>();
  pairs->push_back({"every hundredth record differs", 1.3, [](const std::filesystem::path& made_in) {
                      return ComparedFiles{large_document(made_in), large_document(made_in, kEveryNthChanged)};
                    }});
  pairs->push_back({"nothing in common", 5, [](const std::filesystem::path& made_in) {
                      return ComparedFiles{large_document(made_in), another_document(made_in)};
                    }});
  pairs->push_back({"the same keys, all else different", 5, [](const std::filesystem::path& made_in) {
                      std::filesystem::path file = made_in / "other-words.vtr";
                      DocumentSize size = fifty_megabytes();
                      size.seed = 2;
                      if (!std::filesystem::exists(file)) write_document(file, size);
                      return ComparedFiles{large_document(made_in), file};
                    }});
  for (std::size_t nth = 0; nth < pairs->size(); ++nth) {
    add_benchmark("diff/" + std::to_string(nth), kRuns,
                  [=](benchmark::State& state) { measure(folder, (*pairs)[nth], state); });
  }
  return [=] {
    for (const Pair& pair : *pairs) print(pair);
  };
}

}  // namespace trvtrout::bench
