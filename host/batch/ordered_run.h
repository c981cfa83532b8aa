#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/console.h"
#include "host/machine.h"

namespace trvtrout::host {

// What became of one file of many.
struct FileOutcome {
  ExitStatus status = kFine;
  std::string complaint;  // the first one, for people; empty for none
};

// Work on many files by several threads, told in the order of the files whatever ends first. What the work writes is
// held until its turn has come, and no thread begins a file that is too far ahead of it, so that memory doesn't grow
// with the number of files.
class OrderedRun {
 public:
  struct Job {
    std::size_t files = 0;
    unsigned threads = 1;
    std::size_t ahead = 1;  // how many files may be begun behind the one whose turn it is
    // On any of the threads. What it raises is told, as trouble of that file.
    std::function<ExitStatus(std::size_t file)> work;
    // On the thread that runs the job, in order: `before` what the file's work has written goes out, and `after` it.
    std::function<void()> before;
    std::function<void(std::size_t file, FileOutcome& outcome)> after;
    // On the same thread, some times a second while it waits.
    std::function<void()> waiting;
  };
  explicit OrderedRun(Job job);

  // Returns when all files were done and told, or after stop() those that had been begun. Raises what `before` and
  // `after` raise, once all threads have ended.
  void run();
  // From any thread: no further file is begun, and no question asked.
  void stop();
  // From any thread: how many files were done and told.
  std::size_t told();
  // From any thread: whether the file whose turn it is writes by itself, because it asks somebody.
  bool is_asking();

 private:
  struct File {
    explicit File(std::function<bool()> wait) : caught(std::move(wait)) {}
    CaughtOutput caught;
    FileOutcome outcome;
    bool is_done = false, wants_turn = false, has_turn = false;
  };

  void work_on_files();
  FileOutcome outcome_of(std::size_t number, File& file) const;
  bool wait_for_turn(std::size_t number);
  bool tell_next();
  File& file(std::size_t number) { return *files_[number % files_.size()]; }

  Job job_;
  std::mutex mutex_;
  std::condition_variable room_, news_, turns_;
  std::vector<std::unique_ptr<File>> files_;  // those that are begun and not yet told, each at its number's remainder
  std::size_t begun_ = 0, told_ = 0;
  bool is_stopped_ = false;
};

}  // namespace trvtrout::host
