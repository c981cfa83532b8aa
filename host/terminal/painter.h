#pragma once

#include <string>

namespace trvtrout::host {

// Marks what was removed, added and changed: by colours on a terminal, by brackets elsewhere where no word tells it.
class Painter {
 public:
  explicit Painter(bool colors) : colors_(colors) {}

  bool colors() const { return colors_; }
  std::string removed(const std::string& text) const { return in("31", text); }
  std::string added(const std::string& text) const { return in("32", text); }
  std::string changed(const std::string& text) const { return in("33", text); }
  std::string heading(const std::string& text) const { return in("1", text); }
  std::string aside(const std::string& text) const { return in("2", text); }
  // Within a text, where nothing else tells it.
  std::string removed_part(const std::string& text) const { return colors_ ? removed(text) : "[-" + text + "-]"; }
  std::string added_part(const std::string& text) const { return colors_ ? added(text) : "{+" + text + "+}"; }

 private:
  std::string in(const char* code, const std::string& text) const {
    return colors_ && !text.empty() ? "\x1b[" + std::string(code) + "m" + text + "\x1b[0m" : text;
  }

  bool colors_;
};

}  // namespace trvtrout::host
