#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string_view>

#include "bench/generate_document.h"

namespace {

// False: the arguments aren't of the form that the usage shows.
bool take(int argc, char** argv, trvtrout::bench::DocumentSize& size) {
  if (argc == 2) return true;
  if (argc != 4 || std::string_view(argv[2]) != "--changed") return false;
  const char* const end = argv[3] + std::strlen(argv[3]);
  const auto [behind, error] = std::from_chars(argv[3], end, size.every_nth_changed);
  return error == std::errc() && behind == end && size.every_nth_changed > 0;
}

}  // namespace

int main(int argc, char** argv) {
  trvtrout::bench::DocumentSize size = trvtrout::bench::fifty_megabytes();
  if (!take(argc, argv, size)) {
    std::cerr << "usage: trvtrout_generate OUT [--changed N]\n"
                 "Writes a document of about 50 MB; with N, every Nth description is different.\n";
    return 2;
  }
  std::ofstream out(argv[1], std::ios::binary);
  out << trvtrout::bench::generate_document(size);
  out.close();
  if (!out) {
    std::cerr << argv[1] << " can't be written\n";
    return 1;
  }
  return 0;
}
