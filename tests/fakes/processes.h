#pragma once

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trvtrout::fakes {

// Runs `body` in another process; True when it returned True there.
inline bool in_child(const std::function<bool()>& body) {
  const pid_t child = fork();
  if (child == 0) _exit(body() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Ways to lock, for Holder.
inline int flock_shared(int descriptor) { return flock(descriptor, LOCK_SH); }
inline int flock_alone(int descriptor) { return flock(descriptor, LOCK_EX); }
inline int record_lock(int descriptor) {
  struct flock range {};
  range.l_type = F_WRLCK;
  range.l_start = 3;
  range.l_len = 1;
  return fcntl(descriptor, F_SETLK, &range);
}

// Another process that holds a lock on a file as long as the object lives.
class Holder {
 public:
  Holder(const std::string& path, const std::function<int(int)>& lock) {
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    child_ = fork();
    if (child_ == 0) {
      const int descriptor = open(path.c_str(), O_RDWR);
      // Not longer than a test can last, should the test end without its destructors.
      alarm(60);
      const char state = lock(descriptor) == 0 ? 'y' : 'n';
      if (write(ready[1], &state, 1) == 1) pause();
      _exit(0);
    }
    char state = 'n';
    EXPECT_EQ(read(ready[0], &state, 1), 1);
    EXPECT_EQ(state, 'y');
    close(ready[0]);
    close(ready[1]);
  }
  ~Holder() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

 private:
  pid_t child_;
};

}  // namespace trvtrout::fakes
