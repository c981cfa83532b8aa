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

// The fields of all tables as comma-separated text, each with a key in front.
void write_fields(const std::filesystem::path& document, const std::filesystem::path& text) {
  in_child([&] {
    Host host;
    TarvelVtrOut_InOut utility(host.services());
    read_into(utility, document);
    std::ofstream out(text, std::ios::binary);
    out << "Key,Attribute,InternalCode,SQLField,Description,vbVarType,Lenght,SQLType,Select,Lookups,LookupsID\n";
    const auto& tables = utility.CurrentSlots().Schema->Tables.Items;
    for (std::int64_t table = 1; table <= tables.upper(); ++table) {
      const auto& fields = tables.at(table).Fields.Items;
      for (std::int64_t number = 1; number <= fields.upper(); ++number) {
        const vtrfile::FIELDS_ITEM_STRUCT& field = fields.at(number);
        out << tables.at(table).Tid.bytes() << '/' << field.Fid.bytes() << ',' << field.Attribute << ','
            << field.InternalCode.bytes() << ',' << field.SQLField.bytes() << ",\"" << field.Description.bytes()
            << "\"," << field.vbVarType << ',' << field.Lenght << ',' << field.SQLType << ',' << field.Select << ','
            << field.Lookups.bytes() << ',' << field.LookupsID.bytes() << '\n';
      }
    }
    return Cost{};
  });
}

// The whole command beside a program that compares tables of text, on the same fields.
struct BesideTables {
  Measured ours{"vtrout diff --json --part field"};
  Measured tables{"daff --id Key"};
};

void measure(const std::filesystem::path& folder, BesideTables& beside, benchmark::State& state) {
  const ComparedFiles files{large_document(folder), large_document(folder, kEveryNthChanged)};
  const std::string old_text = folder / "old.csv", new_text = folder / "new.csv";
  write_fields(files.primary, old_text);
  write_fields(files.secondary, new_text);
  beside.ours.bytes = files.bytes();
  beside.tables.bytes = file_bytes(old_text) + file_bytes(new_text);
  constexpr int kDifferent = 1;
  for (auto _ : state) {
    beside.ours.add(
        state, command_cost({VTROUT, "diff", files.primary, files.secondary, "--json", "--part", "field"}, kDifferent));
    beside.tables.runs.push_back(
        command_cost({DAFF, "--id", "Key", "--output", folder / "daff.csv", old_text, new_text}));
  }
  beside.ours.tell(state);
}

void print(const BesideTables& beside) {
  if (beside.tables.runs.empty()) return;
  print_table("the fields of two documents, medians", {beside.ours, beside.tables});
  std::cout << "\ntime of daff / of vtrout diff: " << beside.tables.seconds() / beside.ours.seconds() << '\n';
}

// A pair of documents: read, and read with their differences found, by turns.
struct Pair {
  std::string name;
  double most_time;  // wanted, as a multiple of reading both
  ComparedFiles (*files)(const std::filesystem::path& folder);
  Measured reading{"both read"};
  Measured finding{"both read, differences found"};

  // Of the processor: other programs on the machine make the time by the clock uncertain.
  double time_ratio() const { return finding.processor_seconds() / reading.processor_seconds(); }
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
  const auto beside = std::make_shared<BesideTables>();
  if (std::filesystem::exists(DAFF)) {
    add_benchmark("diff/daff", 1, [=](benchmark::State& state) { measure(folder, *beside, state); });
  } else {
    std::cerr << "daff isn't there, so it isn't measured\n";
  }
  return [=] {
    for (const Pair& pair : *pairs) print(pair);
    print(*beside);
  };
}

}  // namespace trvtrout::bench
