#pragma once

#include <cstddef>
#include <string>

namespace trvtrout::platform {

// The name of a file that isn't finished, known to remove_unfinished() as long as this lives.
class Unfinished {
 public:
  explicit Unfinished(const std::string& path);
  ~Unfinished();
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  // To be called once the file is there. If all such files were removed meanwhile, because the program is about to end,
  // this one goes too, and its thread comes no further.
  void is_there() const;

 private:
  std::size_t place_;
};

// Removes all such files. May be called by a signal handler.
void remove_unfinished() noexcept;

}  // namespace trvtrout::platform
