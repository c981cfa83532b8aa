#include "host/batch/batch.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <optional>
#include <thread>

#include "host/batch/batch_log.h"
#include "host/batch/stop_signals.h"
#include "host/counted.h"
#include "host/json.h"
#include "platform/files/path.h"
#include "services/guard.h"

namespace trvtrout::host {
namespace {

using Clock = std::chrono::steady_clock;

std::string one_place(double number) {
  const auto tenths = std::lround(number * 10);
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

std::string duration_text(double seconds) {
  const auto whole = std::lround(seconds);
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  return std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

// How far the batch is, on the line of the terminal that is for it.
class BatchProgress {
 public:
  explicit BatchProgress(std::size_t files) : files_(files) {}

  void show(std::size_t done) {
    if (Clock::now() - shown_ < std::chrono::milliseconds(100)) return;
    shown_ = Clock::now();
    const double seconds = std::chrono::duration<double>(shown_ - begun_).count();
    std::string text = std::to_string(done) + " of " + counted(files_, "file");
    if (done > 0 && seconds > 0) {
      const double rate = static_cast<double>(done) / seconds;
      text +=
          ", " + one_place(rate) + " a second, " + duration_text(static_cast<double>(files_ - done) / rate) + " left";
    }
    progress_.show(text);
  }
  void hide() { progress_.show({}); }

 private:
  std::size_t files_;
  Progress progress_;
  Clock::time_point begun_ = Clock::now(), shown_ = begun_;
};

// What has become of the files so far.
class Tally {
 public:
  Tally(const InputOptions& options, const Batch& batch) : batch_(batch) {
    if (!options.log.empty()) log_.emplace(options.log, batch.subcommand, batch.files.size());
  }

  void add(std::size_t file, const FileOutcome& outcome) {
    ++counts_[outcome.status];
    worst_ = std::max(worst_, outcome.status);
    if (!log_) return;
    guarded([&] { return log_->add(batch_.files[file], outcome), true; },
            [&](const Failure& failure) {
              complain(failure.what + "; no more lines are written into it");
              worst_ = kTrouble;
              log_.reset();
              return false;
            });
  }
  ExitStatus worst() const { return worst_; }
  std::size_t done() const { return counts_[kFine] + counts_[kRemarkable] + counts_[kTrouble]; }
  // "3 files: 1 fine, 1 damaged, 1 in trouble"
  std::string text() const {
    std::string text = counted(done(), "file");
    const char* separator = ": ";
    for (const auto& [count, what] : {std::pair(counts_[kFine], "fine"),
                                      {counts_[kRemarkable], batch_.remark},
                                      {counts_[kTrouble], "in trouble"}}) {
      if (count == 0) continue;
      (((text += separator) += std::to_string(count)) += ' ') += what;
      separator = ", ";
    }
    return text;
  }

 private:
  const Batch& batch_;
  std::optional<BatchLog> log_;
  std::array<std::size_t, 3> counts_{};
  ExitStatus worst_ = kFine;
};

unsigned threads_of(const InputOptions& options) {
  return options.jobs > 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace

BatchEnd run_batch(const Settings& given, const InputOptions& options, const Batch& batch) {
  Settings settings = given;
  settings.terminal = std::make_shared<platform::SharedTerminal>();
  settings.terminal->take_turn = take_turn;
  Tally tally(options, batch);
  BatchProgress progress(batch.files.size());
  const unsigned threads = threads_of(options);
  OrderedRun run({.files = batch.files.size(),
                  .threads = threads,
                  .ahead = threads * batch.ahead,
                  .work = [&](std::size_t file) { return batch.work(settings, file); },
                  .before = [&] { progress.hide(); },
                  .after =
                      [&](std::size_t file, FileOutcome& outcome) {
                        if (batch.told) batch.told(file, outcome);
                        tally.add(file, outcome);
                        progress.show(tally.done());
                      },
                  .waiting = [&] { progress.show(tally.done()); }});
  const auto stopped_text = [&](std::size_t done) {
    return "stopped: " + std::to_string(done) + " of " + counted(batch.files.size(), "file") +
           (done == 1 ? " was done" : " were done");
  };
  StopSignals signals([&] { return run.stop(), !run.is_asking(); }, [&] { complain(stopped_text(run.told())); });
  run.run();
  signals.release();
  progress.hide();
  const bool is_cut_short = tally.done() < batch.files.size();
  if (is_cut_short) complain(stopped_text(tally.done()));
  if (!settings.quiet) err() << tally.text() << '\n';
  return {tally.worst(), tally.done(), is_cut_short ? signals.caught() : 0};
}

ExitStatus finish_batch(const BatchEnd& end) {
  if (end.signal != 0) {
    std::cout.flush();
    end_by(end.signal);
  }
  return end.status;
}

ExitStatus run_one(const InputOptions& options, const char* subcommand, const std::string& file,
                   const std::function<ExitStatus()>& work) {
  std::optional<BatchLog> log;
  if (!options.log.empty()) log.emplace(options.log, subcommand, 1);
  forget_complaint();
  const FileOutcome outcome{work(), first_complaint()};
  if (log) log->add(file, outcome);
  return outcome.status;
}

bool has_operands(const InputOptions& options, const char* subcommand) {
  if (!options.operands.empty() || !options.files_from.empty()) return true;
  complain(std::string("FILE is required; see vtrout help ") + subcommand);
  return false;
}

std::string folder_for(const std::string& folder, const Input& file) {
  if (folder.empty() || file.below.empty()) return folder;
  std::string below = in_folder(folder, file.below.substr(0, file.below.size() - 1));
  if (is_folder(folder)) std::filesystem::create_directories(below);
  return below;
}

bool has_own_names(const std::vector<Input>& files, const std::vector<std::size_t>& owners, std::size_t number) {
  if (owners[number] == number) return true;
  complain(
      files[number].path + ": what is written about it would have the same names as for " + files[owners[number]].path +
      ", which are made of what stands in front of the first full stop; nothing was written: rename it, or give it "
      "a run and a folder of its own");
  return false;
}

void show_trouble_json(const std::string& file) {
  show_json("trouble", {{"file", file}, {"message", first_complaint()}});
}

}  // namespace trvtrout::host
