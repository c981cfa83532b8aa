#pragma once

#include <random>
#include <string>

namespace trvtrout::tests {

// A file as the system writes it, with any value that the format allows in each place: bytes of all kinds in texts,
// numbers that are none, arrays of any lower bound, variants of all types and as deep as they may be. It's made from
// the types alone, without the writer.
std::string random_file(std::mt19937& random);

}  // namespace trvtrout::tests
