#include "bench/measure.h"

namespace trvtrout::bench {
namespace {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "trvtrout-bench-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("can't make the folder " + name);
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

void run() {
  const TemporaryFolder folder;
  const Print summaries[] = {add_reading(folder.path()),     add_matching(folder.path()),  add_comparing(folder.path()),
                             add_differences(folder.path()), add_workbooks(folder.path()), add_exchange(folder.path()),
                             add_salvaging(folder.path()),   add_batch(folder.path()),     add_startup()};
  benchmark::RunSpecifiedBenchmarks();
  for (const Print& print : summaries) print();
}

}  // namespace
}  // namespace trvtrout::bench

// FILTER, a regular expression, stands for --benchmark_filter=FILTER.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc == 2 && argv[1][0] != '-') {
    benchmark::SetBenchmarkFilter(argv[1]);
    argc = 1;
  }
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
  try {
    trvtrout::bench::run();
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
