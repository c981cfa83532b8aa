#include "host/batch/ordered_run.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

#include "services/guard.h"

namespace trvtrout::host {
namespace {

constexpr std::chrono::milliseconds kWaiting{100};

}  // namespace

OrderedRun::OrderedRun(Job job) : job_(std::move(job)), files_(job_.ahead + 1) {}

void OrderedRun::run() {
  std::vector<std::jthread> threads;
  std::exception_ptr failure;
  try {
    while (threads.size() < std::min<std::size_t>(job_.threads, job_.files)) {
      threads.emplace_back([this] { work_on_files(); });
    }
  } catch (const std::system_error&) {
    // As many as the machine lets start will do, if there is one at all.
    if (threads.empty()) throw;
  }
  try {
    while (tell_next()) {
    }
  } catch (...) {
    failure = std::current_exception();
    stop();
  }
  threads.clear();
  if (failure) std::rethrow_exception(failure);
}

void OrderedRun::stop() {
  const std::scoped_lock lock(mutex_);
  is_stopped_ = true;
  room_.notify_all();
  news_.notify_all();
  turns_.notify_all();
}

std::size_t OrderedRun::told() {
  const std::scoped_lock lock(mutex_);
  return told_;
}

bool OrderedRun::is_asking() {
  const std::scoped_lock lock(mutex_);
  return told_ < begun_ && file(told_).has_turn && !file(told_).is_done;
}

void OrderedRun::work_on_files() {
  for (;;) {
    std::unique_lock lock(mutex_);
    room_.wait(lock, [&] { return is_stopped_ || begun_ == job_.files || begun_ - told_ < files_.size(); });
    if (is_stopped_ || begun_ == job_.files) return;
    const std::size_t number = begun_++;
    auto& place = files_[number % files_.size()];
    place = std::make_unique<File>([this, number] { return wait_for_turn(number); });
    File& begun = *place;
    lock.unlock();
    FileOutcome outcome = outcome_of(number, begun);
    lock.lock();
    begun.outcome = std::move(outcome);
    begun.is_done = true;
    if (number == told_) news_.notify_one();
  }
}

FileOutcome OrderedRun::outcome_of(std::size_t number, File& file) const {
  const CaughtOutput::Scope scope(file.caught);
  const ExitStatus status = guarded([&] { return job_.work(number); },
                                    [](const Failure& failure) {
                                      complain(failure.what);
                                      return kTrouble;
                                    });
  return {status, first_complaint()};
}

bool OrderedRun::wait_for_turn(std::size_t number) {
  std::unique_lock lock(mutex_);
  file(number).wants_turn = true;
  if (number == told_) news_.notify_one();
  turns_.wait(lock, [&] { return is_stopped_ || file(number).has_turn; });
  return file(number).has_turn;
}

// False when there is nothing more to tell.
bool OrderedRun::tell_next() {
  std::unique_lock lock(mutex_);
  const auto is_over = [&] { return told_ == job_.files || (is_stopped_ && told_ == begun_); };
  const auto has_news = [&] {
    return is_over() || (told_ < begun_ && (file(told_).is_done || (file(told_).wants_turn && !file(told_).has_turn)));
  };
  while (!news_.wait_for(lock, kWaiting, has_news)) {
    if (told_ < begun_ && file(told_).has_turn) continue;  // a question stands on the terminal
    lock.unlock();
    job_.waiting();
    lock.lock();
  }
  if (is_over()) return false;
  File& next = file(told_);
  if (!next.has_turn) {
    lock.unlock();  // its thread has ended it, or waits for its turn
    job_.before();
    next.caught.release();
    lock.lock();
    next.has_turn = true;
    turns_.notify_all();
    if (!next.is_done) return true;
  }
  lock.unlock();
  job_.after(told_, next.outcome);
  lock.lock();
  files_[told_ % files_.size()].reset();
  ++told_;
  room_.notify_all();
  return true;
}

}  // namespace trvtrout::host
