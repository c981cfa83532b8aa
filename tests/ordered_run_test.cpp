#include "host/batch/ordered_run.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>

namespace trvtrout::tests {
namespace {

using host::FileOutcome;
using host::OrderedRun;

// Each file ends only when the one behind it has ended, as far as threads go.
TEST(ThreadsInOrder, TellsInOrderAndHoldsFewWhateverEndsFirst) {
  constexpr std::size_t kFiles = 60, kThreads = 4;
  std::vector<std::promise<void>> ended(kFiles + 1);
  std::atomic<std::size_t> begun = 0, told = 0, most_ahead = 0;
  std::string order;
  testing::internal::CaptureStdout();
  OrderedRun run({.files = kFiles,
                  .threads = kThreads,
                  .ahead = kThreads,
                  .work =
                      [&](std::size_t file) {
                        most_ahead = std::max(most_ahead.load(), ++begun - told);
                        if (file % kThreads + 1 < kThreads) ended[file + 1].get_future().wait();
                        host::out() << file << ' ' << std::flush;
                        ended[file].set_value();
                        if (file == 7) throw std::runtime_error("trouble");
                        return file == 9 ? host::kRemarkable : host::kFine;
                      },
                  .before = [] {},
                  .after =
                      [&](std::size_t file, const FileOutcome& outcome) {
                        EXPECT_EQ(file, told++);
                        order += std::to_string(outcome.status) + outcome.complaint;
                      },
                  .waiting = [] {}});
  testing::internal::CaptureStderr();
  run.run();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "vtrout: trouble\n");
  std::string expected, statuses = std::string(kFiles, '0');
  for (std::size_t file = 0; file < kFiles; ++file) expected += std::to_string(file) + ' ';
  EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
  EXPECT_EQ(order, statuses.replace(9, 1, "1").replace(7, 1, "2trouble"));
  EXPECT_LE(most_ahead, kThreads + 1);
}

TEST(ThreadsInOrder, WhatTheTellingRaisesEndsItAndNobodyWaitsForATurn) {
  std::atomic<int> refused = 0;
  OrderedRun run({.files = 100,
                  .threads = 3,
                  .ahead = 3,
                  .work =
                      [&](std::size_t file) {
                        if (file > 0 && !host::take_turn()) ++refused;
                        return host::kFine;
                      },
                  .before = [] {},
                  .after = [](std::size_t, const FileOutcome&) { throw std::runtime_error("the disk is full"); },
                  .waiting = [] {}});
  EXPECT_THROW(run.run(), std::runtime_error);
  EXPECT_LE(refused, 3);
}

}  // namespace
}  // namespace trvtrout::tests
