#include <cstring>
#include <fstream>
#include <iostream>

#include "host/manual/described.h"

// Writes one of the texts that are made from the command's arguments to a file.
int main(int argc, char** argv) {
  using namespace trvtrout::host::manual;
  constexpr std::pair<const char*, std::string (*)(const DescribedProgram&)> kTexts[] = {
      {"man", man_page}, {"bash", bash_completion}, {"zsh", zsh_completion}, {"fish", fish_completion}};
  for (const auto& [form, text] : kTexts) {
    if (argc != 3 || std::strcmp(argv[1], form) != 0) continue;
    std::ofstream file(argv[2], std::ios::binary);
    file << text(described_program()) << std::flush;
    if (file) return 0;
    std::cerr << "trvtrout_manual: can't write " << argv[2] << '\n';
    return 1;
  }
  std::cerr << "Usage: trvtrout_manual man|bash|zsh|fish FILE\n";
  return 2;
}
