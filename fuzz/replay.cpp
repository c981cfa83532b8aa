#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Puts seeds through a fuzz target without the fuzzer: each file in the folders named, whole, cut at some places, with
// some bytes changed, and beside every other one. A target that finds a fault aborts.
namespace {

using Bytes = std::vector<std::uint8_t>;

void put_through(const Bytes& bytes) { LLVMFuzzerTestOneInput(bytes.data(), bytes.size()); }

void put_through_damaged(Bytes bytes) {
  constexpr std::size_t kPlaces = 40;
  const std::size_t step = bytes.size() / kPlaces + 1;
  for (std::size_t at = 0; at < bytes.size(); at += step) {
    bytes[at] ^= 0xFF;
    put_through(bytes);
    bytes[at] ^= 0xFF;
    put_through(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at)));
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Bytes> seeds;
  for (int number = 1; number < argc; ++number) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[number])) {
      if (!entry.is_regular_file()) continue;
      std::ifstream file(entry.path(), std::ios::binary);
      seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
  }
  for (const Bytes& seed : seeds) {
    put_through(seed);
    put_through_damaged(seed);
    for (const Bytes& other : seeds) {
      Bytes pair = seed;
      for (const char mark : std::string("#second#")) pair.push_back(static_cast<std::uint8_t>(mark));
      pair.insert(pair.end(), other.begin(), other.end());
      put_through(pair);
    }
  }
  std::cout << seeds.size() << " seeds\n";
  return seeds.empty() ? 1 : 0;
}
