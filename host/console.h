#pragma once

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace trvtrout::host {

// Where this thread writes data, and what is for people: stdout and stderr, or what catches them for one file of many.
std::ostream& out();
std::ostream& err();

// Waits until this thread may ask a person: not at all, unless what it writes is caught. False when nobody is to be
// asked any more.
bool take_turn();

// The first thing that this thread complained of since forget_complaint().
const std::string& first_complaint();
void forget_complaint();
void note_complaint(const std::string& line);

// What is written about one file of many, in the order in which it was written, until its turn has come.
class CaughtOutput {
 public:
  // `wait` is called by the thread that has something to ask. It returns when all that stands in front of this file has
  // been told and release() was called, or false when nobody is to be asked any more.
  explicit CaughtOutput(std::function<bool()> wait);
  CaughtOutput(const CaughtOutput&) = delete;
  CaughtOutput& operator=(const CaughtOutput&) = delete;

  // While it lives all that this thread writes is caught.
  class Scope {
   public:
    explicit Scope(CaughtOutput& caught);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
  };
  // Whether a scope catches what this thread writes, and whether data are among it.
  static bool is_catching();
  static bool has_data();

  // Passes on what was caught; what is still to come goes out as it's written.
  void release();

 private:
  friend std::ostream& out();
  friend std::ostream& err();
  friend bool take_turn();

  enum class Way { kOut, kErr };
  struct Piece {
    Way way;
    std::string text;
  };
  class Buffer : public std::streambuf {
   public:
    Buffer(CaughtOutput& owner, Way way) : owner_(owner), way_(way) {}

   private:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* bytes, std::streamsize size) override;
    int sync() override;

    CaughtOutput& owner_;
    Way way_;
  };
  void take(Way way, std::string_view text);

  std::function<bool()> wait_;
  std::vector<Piece> pieces_;
  bool is_released_ = false, has_data_ = false;
  Buffer out_buffer_{*this, Way::kOut}, err_buffer_{*this, Way::kErr};
  std::ostream out_{&out_buffer_}, err_{&err_buffer_};
};

}  // namespace trvtrout::host
