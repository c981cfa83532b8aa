#include "platform/console/ask.h"

#include <istream>
#include <ostream>

namespace trvtrout::platform {

char ask_letter(std::istream& in, std::ostream& out, const std::string& question, std::string_view letters) {
  while (in) {
    const std::string line = ask_line(in, out, question);
    if (line.empty()) continue;
    const char first = line[0] >= 'A' && line[0] <= 'Z' ? static_cast<char>(line[0] - 'A' + 'a') : line[0];
    if (letters.find(first) != std::string_view::npos) return first;
  }
  return '\0';
}

std::string ask_line(std::istream& in, std::ostream& out, const std::string& question) {
  out << question << std::flush;
  std::string line;
  if (!std::getline(in, line)) out << '\n' << std::flush;
  const std::size_t first = line.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return line.substr(first, line.find_last_not_of(" \t\r") + 1 - first);
}

}  // namespace trvtrout::platform
