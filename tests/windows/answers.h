#pragma once

#include <deque>
#include <string>
#include <vector>
#include <windows.h>

namespace trvtrout::tests {

// The button to press in a box or dialog, by its id (IDYES), and what to write into the field for a file's name first.
struct Answer {
  int button = IDOK;
  std::wstring path = {};
};

// What a box or dialog showed. Of a save dialog: the filter that was chosen, and the name that stood in its field.
struct Shown {
  std::wstring title, text, filter, name;
  std::vector<int> buttons;  // ids, in ascending order
};

// While it lives a thread answers the boxes and dialogs on the desktop, in any program: one after the other, and those
// beyond the given answers with OK or Cancel.
class Answers {
 public:
  explicit Answers(std::deque<Answer> answers = {});
  ~Answers() { stop(); }
  Answers(const Answers&) = delete;
  Answers& operator=(const Answers&) = delete;

  // All that was shown; nothing is answered any more.
  const std::vector<Shown>& stop();

 private:
  void look();
  void answer(HWND dialog);

  std::deque<Answer> answers_;
  std::vector<Shown> shown_;
  std::vector<HWND> answered_;
  HANDLE stopped_;
  HANDLE thread_;
};

}  // namespace trvtrout::tests
