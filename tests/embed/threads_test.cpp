#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <filesystem>
#include <sstream>
#include <thread>

#include "component/TarvelVtrOut_InOut.h"
#include "component/parts.h"
#include "differences/differences.h"
#include "exchange/database_export.h"
#include "exchange/json_document.h"
#include "platform/console/console_message_box.h"
#include "platform/console/console_save_dialog.h"
#include "platform/console/quiet_message_loop.h"
#include "platform/files/local_files.h"
#include "platform/files/path.h"
#include "platform/locale/us_locale.h"
#include "platform/program/spreadsheet_program.h"
#include "spreadsheet/workbook_file.h"
#include "tests/embed/host.h"
#include "text/utf8.h"

// Several threads at once: an object each for all that there is to do, and what threads do to one document.
#ifdef __SANITIZE_THREAD__
// libzip asks the C library for the time zone, whose lock around that the sanitizer doesn't see.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
  return "race:tzset_internal";
}
#endif

namespace trvtrout::tests {
namespace {

constexpr std::size_t kThreads = 4;

void run_at_once(const std::function<void(std::size_t)>& work) {
  std::array<std::thread, kThreads> threads;
  for (std::size_t at = 0; at < kThreads; ++at) threads[at] = std::thread(work, at);
  for (std::thread& thread : threads) thread.join();
}

// All that one thread makes of two files, by its name. It goes by the class itself, and each step begins in all threads
// at once: whatever one thread has locked and unlocked before another hides from the sanitizer what both do.
class Work {
 public:
  // `step` is called in front of each.
  Work(const std::string& first, const std::string& second, const std::function<void()>& step) : step_(step) {
    std::filesystem::copy_file(first, first_);
    std::filesystem::copy_file(second, second_);
  }

  std::map<std::string, std::string> run() {
    read(other_, second_, False);
    read(utility_, second_, True);
    read(utility_, first_, False);
    for (const Part& part : document_parts()) reports_on(part);
    exports();
    std::string bytes = file_bytes(first_);
    bytes.replace(bytes.size() / 3, 200, 200, '\xFF');
    std::u16string path = platform::class_path(folder_.put("struck.vtr", bytes)), message;
    step_();
    Boolean primary = False;
    EXPECT_TRUE(bool(utility_.SalvageVTR(path, primary))) << utility_.LastFailure();
    made_["salvaged"] = json_of(utility_);
    path = platform::class_path(folder_.at("saved.vtr"));
    step_();
    EXPECT_TRUE(bool(utility_.RecoverVTR(path, message))) << utility_.LastFailure();
    made_["account"] = text::to_utf8(message);
    std::string of_class = folder_.at("");
    std::ranges::replace(of_class, '/', '\\');
    for (auto& [name, text] : made_) replace_all(text = without_moments(text), of_class, "FOLDER/");
    return made_;
  }

 private:
  void read(TarvelVtrOut_InOut& utility, const std::string& file, Boolean is_secondary) {
    std::u16string path = platform::class_path(file), list;
    step_();
    EXPECT_TRUE(bool(utility.ReadVTR(path, list, is_secondary))) << utility.LastFailure();
  }

  void reports_on(const Part& part) {
    std::u16string first = platform::class_path(first_), second = platform::class_path(second_), report, comparison;
    Boolean is_temp = True;
    step_();
    EXPECT_TRUE(bool((utility_.*part.report)(first, report, is_temp))) << utility_.LastFailure();
    made_[std::string("report ") + part.name] = file_bytes(platform::machine_path(report));
    sheets(part, "report", [&](const std::u16string& book) {
      return utility_.XL_Output_Statistics(book, report, std::u16string(part.sheet.name));
    });
    step_();
    EXPECT_TRUE(bool((utility_.*part.compare)(first, second, comparison))) << utility_.LastFailure();
    made_[std::string("compare ") + part.name] = file_bytes(platform::machine_path(comparison));
    sheets(part, "compare", [&](const std::u16string& book) {
      return utility_.XL_Output_Compared(book, comparison, std::u16string(part.sheet.name), &utility_, &other_, True);
    });
  }

  // A workbook of each format with one sheet.
  template <class Move>
  void sheets(const Part& part, const std::string& kind, Move move) {
    for (const auto& [extension, format] : {std::pair{".xls", spreadsheet::WorkbookFormat::kBiff8},
                                            std::pair{".xlsx", spreadsheet::WorkbookFormat::kOoxml}}) {
      const std::string name = kind + part.name + extension;
      step_();
      const std::string path = folder_.put(name, spreadsheet::empty_workbook(format));
      EXPECT_TRUE(bool(move(platform::class_path(path)))) << utility_.LastFailure();
    }
  }

  std::string json_of(const TarvelVtrOut_InOut& utility) {
    step_();
    std::ostringstream out;
    exchange::JsonWriter json(out);
    exchange::Texts texts(1252, page_);
    write_document(json, texts, utility.CurrentSlots());
    json.flush();
    return out.str();
  }

  void exports() {
    made_["json"] = json_of(utility_);
    step_();
    std::ostringstream out;
    differences::find_differences(utility_.CurrentSlots(), other_.CurrentSlots(),
                                  [&](const auto& difference) { out << old_path(difference.place) << '\n'; });
    made_["differences"] = out.str();
    step_();
    exchange::DatabaseExport database(folder_.at("all.db"), exchange::Texts(1252, page_));
    database.put({first_, first_, 0, ""}, utility_.CurrentSlots());
    database.commit();
  }

  const std::function<void()>& step_;
  fakes::TemporaryFolder folder_;
  std::string first_ = folder_.at("first.vtr"), second_ = folder_.at("second.vtr");
  std::map<std::string, std::string> made_;

  std::istringstream in_;
  std::ostringstream out_;
  platform::LocalFiles files_;
  platform::ConsoleMessageBox message_box_{platform::Overwrite::kYes, in_, out_, false};
  platform::ConsoleSaveDialog save_dialog_{files_, in_, out_, false};
  platform::QuietMessageLoop message_loop_;
  platform::UsLocale locale_;
  platform::SpreadsheetProgram spreadsheet_{files_, locale_};
  std::shared_ptr<const platform::CodePage> page_ = std::make_shared<const platform::CodePage>(1252);
  TarvelVtrOut_InOut utility_{{files_, message_box_, save_dialog_, message_loop_, locale_, spreadsheet_}};
  TarvelVtrOut_InOut other_{{files_, message_box_, save_dialog_, message_loop_, locale_, spreadsheet_}};
};

TEST(Threads, AnObjectEachMakesTheSameAsAlone) {
  using Pair = std::pair<const char*, const char*>;
  const std::array<Pair, 3> files = {Pair{"plant.vtr", "plant-next.vtr"}, Pair{"dense.vtr", "dense-next.vtr"},
                                     Pair{"plant-old-format.vtr", "plant.vtr"}};
  std::array<std::array<std::map<std::string, std::string>, kThreads>, files.size()> made;
  const auto make = [&](std::size_t pair, const std::function<void()>& step) {
    return Work(sample_path(files[pair].first), sample_path(files[pair].second), step).run();
  };
  std::barrier all(kThreads);
  // All first uses in the process come from several threads.
  run_at_once([&](std::size_t thread) {
    for (std::size_t pair = 0; pair < files.size(); ++pair)
      made[pair][thread] = make(pair, [&] { all.arrive_and_wait(); });
  });
  for (std::size_t pair = 0; pair < files.size(); ++pair) {
    const auto alone = make(pair, [] {});
    for (const auto& of_thread : made[pair]) {
      for (const auto& [name, text] : alone)
        EXPECT_TRUE(of_thread.at(name) == text) << files[pair].first << ' ' << name;
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
