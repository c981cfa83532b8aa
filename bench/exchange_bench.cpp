// What a large document costs on its way to other programs and back: the whole commands, beside reading the file.
#include "bench/measure.h"

namespace trvtrout::bench {
namespace {

constexpr int kRuns = 7;

struct Exchange {
  double time_ratio(const Measured& command) const { return command.seconds() / reading.seconds(); }
  // Beyond what reading the document takes.
  double export_memory() const { return (to_json.peak() - reading_command.peak()) / (1024 * 1024); }
  double import_memory() const { return from_json.peak() / from_json.bytes; }

  Measured reading{"ReadVTR"};
  Measured reading_command{"vtrout info"};
  Measured to_json{"export --json OUT"};
  Measured from_json{"import"};
  Measured to_lines{"export --ndjson OUT"};
  Measured to_database{"export --sqlite, new"};
  Measured to_database_again{"export --sqlite, again"};
};

void measure(const std::filesystem::path& folder, Exchange& exchange, benchmark::State& state) {
  const std::string file = large_document(folder), json = folder / "large.json", back = folder / "back.vtr",
                    lines = folder / "large.ndjson", database = folder / "large.db";
  for (Measured* const measured : {&exchange.reading, &exchange.reading_command, &exchange.to_json, &exchange.from_json,
                                   &exchange.to_lines, &exchange.to_database, &exchange.to_database_again}) {
    measured->bytes = file_bytes(file);
  }
  for (auto _ : state) {
    exchange.reading.runs.push_back(reading_cost(file));
    exchange.reading_command.runs.push_back(command_cost({VTROUT, "info", file}));
    exchange.to_json.add(state, command_cost({VTROUT, "export", file, "--json", json, "--yes"}));
    exchange.from_json.runs.push_back(command_cost({VTROUT, "import", json, back, "--yes"}));
    exchange.to_lines.runs.push_back(command_cost({VTROUT, "export", file, "--ndjson", lines, "--yes"}));
    std::filesystem::remove(database);
    exchange.to_database.runs.push_back(command_cost({VTROUT, "export", file, "--sqlite", database}));
    exchange.to_database_again.runs.push_back(command_cost({VTROUT, "export", file, "--sqlite", database}));
  }
  exchange.to_json.tell(state);
}

void print(const Exchange& exchange) {
  if (exchange.reading.runs.empty()) return;
  print_table("documents for other programs, medians; the peak of a command is all of its memory",
              {exchange.reading, exchange.reading_command, exchange.to_json, exchange.from_json, exchange.to_lines,
               exchange.to_database, exchange.to_database_again});
  const auto ratio = [&](const Measured& command, int most) {
    std::cout << "time of " << command.name << " / ReadVTR: " << exchange.time_ratio(command);
    if (most > 0) std::cout << " (wanted: at most " << most << ')';
    std::cout << '\n';
  };
  std::cout << '\n';
  ratio(exchange.to_json, 8);
  ratio(exchange.from_json, 25);
  ratio(exchange.to_lines, 0);
  ratio(exchange.to_database, 12);
  ratio(exchange.to_database_again, 0);
  std::cout << "memory of export --json beyond that of reading: " << exchange.export_memory()
            << " MiB (wanted: at most 64)\npeak memory of import / size of the file written: "
            << exchange.import_memory() << " (wanted: at most 6)\n";
}

}  // namespace

Print add_exchange(const std::filesystem::path& folder) {
  const auto exchange = std::make_shared<Exchange>();
  add_benchmark("export", kRuns, [=](benchmark::State& state) { measure(folder, *exchange, state); });
  return [=] { print(*exchange); };
}

}  // namespace trvtrout::bench
