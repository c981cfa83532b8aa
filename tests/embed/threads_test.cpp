#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "spreadsheet/workbook_file.h"
#include "tests/embed/host.h"

// Several threads at once, a document each: all that the library does, and what threads do to one document.
namespace trvtrout::tests {
namespace {

constexpr std::size_t kThreads = 4;
constexpr int kRounds = 2;

void run_at_once(const std::function<void(std::size_t)>& work) {
  std::array<std::thread, kThreads> threads;
  for (std::size_t at = 0; at < kThreads; ++at) threads[at] = std::thread(work, at);
  for (std::thread& thread : threads) thread.join();
}

// All that one thread makes of two files, by its name.
class Work {
 public:
  Work(const std::string& first, const std::string& second) {
    std::filesystem::copy_file(first, first_);
    std::filesystem::copy_file(second, second_);
    document_.read(second_, TRVTROUT_SECONDARY);
    document_.read(first_);
    other_.read(second_);
  }

  std::map<std::string, std::string> run() {
    for (int32_t part = 0; part < TRVTROUT_PARTS; ++part) texts_of(part);
    for (const auto& [extension, format] : {std::pair{".xls", spreadsheet::WorkbookFormat::kBiff8},
                                            std::pair{".xlsx", spreadsheet::WorkbookFormat::kOoxml}}) {
      sheets(folder_.put(std::string("book") + extension, spreadsheet::empty_workbook(format)));
    }
    expect_done(trvtrout_diff(document_, other_, nullptr, append, &made_["diff"], nullptr));
    expect_done(trvtrout_export(document_, TRVTROUT_JSON, append, &made_["json"]));
    expect_done(trvtrout_export(document_, TRVTROUT_LINES, append, &made_["lines"]));
    expect_done(trvtrout_export_database(document_, folder_.at("all.db").c_str()));
    std::string bytes = file_bytes(first_);
    bytes.replace(bytes.size() / 3, 200, 200, '\xFF');
    const std::string struck = folder_.put("struck.vtr", bytes);
    document_.read(struck, TRVTROUT_PRIMARY, TRVTROUT_DAMAGED);
    expect_done(trvtrout_salvage(document_, struck.c_str(), TRVTROUT_PRIMARY));
    expect_done(trvtrout_export(document_, TRVTROUT_JSON_PRETTY, append, &made_["salvaged"]));
    expect_done(trvtrout_recover(document_, folder_.at("saved.vtr").c_str(), nullptr));
    std::string of_class = folder_.at("");
    std::ranges::replace(of_class, '/', '\\');
    for (auto& [name, text] : made_) {
      for (const std::string& folder : {folder_.at(""), of_class}) replace_all(text, folder, "FOLDER/");
    }
    return made_;
  }

 private:
  void expect_done(trvtrout_result result) { EXPECT_LE(result, TRVTROUT_INCOMPLETE) << document_.message(); }

  void texts_of(int32_t part) {
    const std::string name = trvtrout_part_name(part);
    char* path = nullptr;
    expect_done(trvtrout_report(document_, part, first_.c_str(), 1, &path));
    report_ = taken(path);
    made_["report " + name] = without_moments(file_bytes(report_).substr(file_bytes(report_).find('\n')));
    document_.host.answer = TRVTROUT_ANSWER_YES;
    expect_done(trvtrout_compare(document_, part, first_.c_str(), second_.c_str(), &path));
    comparison_ = taken(path);
    made_["compare " + name] = without_moments(file_bytes(comparison_).substr(file_bytes(comparison_).find('\n')));
  }
  void sheets(const std::string& book) {
    expect_done(trvtrout_workbook_report(document_, book.c_str(), report_.c_str(), "Data Send"));
    expect_done(trvtrout_workbook_comparison(document_, book.c_str(), comparison_.c_str(), "Compared", document_,
                                             other_, 1));
  }

  fakes::TemporaryFolder folder_;
  std::string first_ = folder_.at("first.vtr"), second_ = folder_.at("second.vtr");
  EmbeddedDocument document_, other_;
  std::map<std::string, std::string> made_;
  std::string report_, comparison_;
};

TEST(Threads, ADocumentEachMakesTheSameAsAlone) {
  const std::array files = {std::pair{sample_path("plant.vtr"), sample_path("plant-next.vtr")},
                            std::pair{sample_path("dense.vtr"), sample_path("dense-next.vtr")},
                            std::pair{sample_path("plant-old-format.vtr"), sample_path("plant.vtr")}};
  std::array<std::array<std::map<std::string, std::string>, kThreads>, files.size()> made;
  // All first uses in the process come from several threads.
  run_at_once([&](std::size_t thread) {
    for (int round = 0; round < kRounds; ++round) {
      for (std::size_t pair = 0; pair < files.size(); ++pair) {
        const std::size_t own = (pair + thread) % files.size();
        made[own][thread] = Work(files[own].first, files[own].second).run();
      }
    }
  });
  for (std::size_t pair = 0; pair < files.size(); ++pair) {
    const auto alone = Work(files[pair].first, files[pair].second).run();
    for (const auto& of_thread : made[pair]) {
      for (const auto& [name, text] : alone) EXPECT_TRUE(of_thread.at(name) == text) << files[pair].first << ' ' << name;
    }
  }
}

TEST(Threads, OneDocumentHasOneCallAtATime) {
  EmbeddedDocument document;
  std::atomic<int> done = 0, busy = 0;
  run_at_once([&](std::size_t) {
    for (int call = 0; call < 50; ++call) {
      const trvtrout_result result = trvtrout_read(document, sample_path("plant.vtr").c_str(), TRVTROUT_PRIMARY);
      ++(result == TRVTROUT_BUSY ? busy : done);
      EXPECT_TRUE(result == TRVTROUT_OK || result == TRVTROUT_BUSY) << result;
    }
  });
  EXPECT_EQ(done + busy, 50 * static_cast<int>(kThreads));
  EXPECT_GT(done, 0);
}

TEST(Threads, AnotherThreadStopsAndFrees) {
  trvtrout_document* document = nullptr;
  ASSERT_EQ(trvtrout_new(nullptr, &document), TRVTROUT_OK);
  std::atomic<bool> stopped = false;
  std::thread worker([&] {
    trvtrout_result result = TRVTROUT_OK;
    while (result == TRVTROUT_OK) {
      result = trvtrout_read(document, sample_path("dense.vtr").c_str(), TRVTROUT_PRIMARY);
    }
    EXPECT_EQ(result, TRVTROUT_STOPPED);
    stopped = true;
    while (result != TRVTROUT_INVALID_HANDLE) {
      result = trvtrout_read(document, sample_path("dense.vtr").c_str(), TRVTROUT_PRIMARY);
      EXPECT_TRUE(result == TRVTROUT_STOPPED || result == TRVTROUT_INVALID_HANDLE) << result;
    }
  });
  EXPECT_EQ(trvtrout_set_stop(document, 1), TRVTROUT_OK);
  while (!stopped) std::this_thread::yield();
  EXPECT_EQ(trvtrout_free(document), TRVTROUT_OK);
  worker.join();
}

}  // namespace
}  // namespace trvtrout::tests
